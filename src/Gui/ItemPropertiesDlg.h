#pragma once
// The properties of one folder or note: caption, icon, text and background colours, priority,
// task state and read-only mark, and what it holds ("^n Notes, ^f Folders") and its size.
// Accepting writes the changes into the item, which announces them to its document; the caller
// saves the document.
#include <QDialog>

#include <cstdint>
#include <optional>

class CItem;
class CLanguageModule;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

class CItemPropertiesDlg : public QDialog
{
    Q_OBJECT

public:
    // Icon index 0 keeps the item kind's own icon; 1..IconCount choose one of the tree's icons.
    static constexpr int IconCount = 12;
    static constexpr int PriorityLevels = 5;

    CItemPropertiesDlg(CItem& item, bool readOnlyDocument, const CLanguageModule* language,
                       QWidget* parent = nullptr);

    QLineEdit* CaptionEdit() const { return m_Caption; }
    QComboBox* IconCombo() const { return m_Icon; }
    QCheckBox* TextColourCheck() const { return m_TextColourSet; }
    QCheckBox* BackColourCheck() const { return m_BackColourSet; }
    QComboBox* PriorityCombo() const { return m_Priority; }
    QComboBox* TaskCombo() const { return m_Task; }
    QCheckBox* ReadOnlyCheck() const { return m_ReadOnly; }
    QLabel* StatisticsLabel() const { return m_Statistics; }
    QLabel* SizeLabel() const { return m_Size; }

    // The colours chosen (0x00BBGGRR), as the colour buttons would set them.
    void SetTextColour(std::optional<uint32_t> colour);
    void SetBackColour(std::optional<uint32_t> colour);

    void accept() override;

private:
    void ChooseColour(bool text);
    void ShowColours();

    CItem& m_Item;
    const CLanguageModule* m_Language;
    std::optional<uint32_t> m_TextColour;
    std::optional<uint32_t> m_BackColour;

    QLineEdit* m_Caption;
    QComboBox* m_Icon;
    QCheckBox* m_TextColourSet;
    QPushButton* m_TextColourButton;
    QCheckBox* m_BackColourSet;
    QPushButton* m_BackColourButton;
    QComboBox* m_Priority;
    QComboBox* m_Task;
    QCheckBox* m_ReadOnly;
    QLabel* m_Statistics;
    QLabel* m_Size;
};

// "^n Notes, ^f Folders" with the counts of everything below `item`.
QString ItemStatisticsText(const CItem& item, const CLanguageModule* language);
