#include "Gui/QtPlatformServices.h"

#include "Gui/QtText.h"

#include <QDir>
#include <QFileDialog>
#include <QFontDatabase>
#include <QMessageBox>
#include <QStandardPaths>

namespace
{
QMessageBox::Icon ToQtIcon(EMsgIcon icon)
{
    switch (icon)
    {
    case EMsgIcon::Information:
        return QMessageBox::Information;
    case EMsgIcon::Warning:
        return QMessageBox::Warning;
    case EMsgIcon::Error:
        return QMessageBox::Critical;
    case EMsgIcon::Question:
        return QMessageBox::Question;
    case EMsgIcon::None:
        break;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons ToQtButtons(EMsgButtons buttons)
{
    switch (buttons)
    {
    case EMsgButtons::OkCancel:
        return QMessageBox::Ok | QMessageBox::Cancel;
    case EMsgButtons::YesNo:
        return QMessageBox::Yes | QMessageBox::No;
    case EMsgButtons::YesNoCancel:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case EMsgButtons::Ok:
        break;
    }
    return QMessageBox::Ok;
}

EMsgResult FromQtButton(int button)
{
    switch (button)
    {
    case QMessageBox::Cancel:
        return EMsgResult::Cancel;
    case QMessageBox::Yes:
        return EMsgResult::Yes;
    case QMessageBox::No:
        return EMsgResult::No;
    default:
        return EMsgResult::Ok;
    }
}

// "Name (*.ext)|*.ext||" becomes Qt's "Name (*.ext)": the display parts, without the patterns.
QString ToQtFilter(const std::u16string& filter)
{
    const QStringList parts = ToQString(filter).split(u'|', Qt::SkipEmptyParts);
    QStringList names;
    for (qsizetype i = 0; i < parts.size(); i += 2)
        names << parts[i];
    return names.join(QStringLiteral(";;"));
}
} // namespace

EMsgResult CQtMessageBox::Show(const std::u16string& text, EMsgIcon icon, EMsgButtons buttons)
{
    QMessageBox box(ToQtIcon(icon), QStringLiteral("Quillarium Organizer"), ToQString(text),
                    ToQtButtons(buttons));
    return FromQtButton(box.exec());
}

std::u16string CQtDocumentsFolder::PersonalDocumentsFolder() const
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (folder.isEmpty())
        folder = QDir::homePath();
    if (!folder.endsWith(u'/'))
        folder += u'/';
    return ToU16(folder);
}

bool CQtFontQuery::HasFace(std::u16string_view face) const
{
    return QFontDatabase::families().contains(ToQString(face), Qt::CaseSensitive);
}

std::u16string CQtFontQuery::SystemSansFace() const
{
    return ToU16(QFontDatabase::systemFont(QFontDatabase::GeneralFont).family());
}

bool CQtNewDataFileDialog::AskNewDataFilePath(const std::u16string& filter,
                                              const std::u16string& proposedName, std::u16string& path)
{
    const QString chosen =
        QFileDialog::getSaveFileName(nullptr, QString(), ToQString(proposedName), ToQtFilter(filter));
    if (chosen.isEmpty())
        return false;
    path = ToU16(chosen);
    return true;
}
