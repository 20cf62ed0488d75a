#pragma once
// The narrow interface through which shared components reach the application: the log, the
// language module and the message boxes. The application owns the objects and registers them;
// components ask the connector and do nothing when a piece is absent (as in unit tests).
class CLog;
class CLanguageModule;
class IMessageBox;

class CAppConnector
{
public:
    CLog* GetLog() const { return m_Log; }
    void SetLog(CLog* log) { m_Log = log; }
    CLanguageModule* GetLanguageModule() const { return m_Language; }
    void SetLanguageModule(CLanguageModule* module) { m_Language = module; }
    IMessageBox* GetMessageBox() const { return m_MessageBox; }
    void SetMessageBox(IMessageBox* box) { m_MessageBox = box; }

    // The process-wide connector; null until the application (or a test) installs one.
    static CAppConnector* Get();
    static void Install(CAppConnector* connector);

private:
    CLog* m_Log = nullptr;
    CLanguageModule* m_Language = nullptr;
    IMessageBox* m_MessageBox = nullptr;
};
