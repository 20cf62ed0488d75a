#pragma once
// A fresh folder under the system's temporary folder, removed with everything in it at the end
// of the test.
#include <string>

class CTempFolder
{
public:
    CTempFolder();
    ~CTempFolder();
    CTempFolder(const CTempFolder&) = delete;
    CTempFolder& operator=(const CTempFolder&) = delete;

    const std::string& Path() const { return m_Path; }       // UTF-8, ends without '/'
    std::u16string Path16() const;                            // UTF-16
    std::u16string File16(const std::string& name) const;     // Path16() + '/' + name

private:
    std::string m_Path;
};
