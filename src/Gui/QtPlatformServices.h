#pragma once
// The platform answers start-up needs, given through Qt: message boxes, the documents folder,
// the installed fonts and the save dialog for a new data file.
#include "App/AppLocations.h"
#include "App/StartupDataCenter.h"
#include "Prefs/FontQuery.h"
#include "Shared/Base/MessageBox.h"

class CQtMessageBox : public IMessageBox
{
public:
    EMsgResult Show(const std::u16string& text, EMsgIcon icon, EMsgButtons buttons) override;
};

class CQtDocumentsFolder : public IDocumentsFolder
{
public:
    std::u16string PersonalDocumentsFolder() const override;
};

class CQtFontQuery : public IFontQuery
{
public:
    bool HasFace(std::u16string_view face) const override;
    std::u16string SystemSansFace() const override;
};

class CQtNewDataFileDialog : public INewDataFileDialog
{
public:
    bool AskNewDataFilePath(const std::u16string& filter, const std::u16string& proposedName,
                            std::u16string& path) override;
};
