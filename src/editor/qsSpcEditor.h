#pragma once

#include "TSmartForm.h"
#include "qsSpcMng.h"
#include "rtl/TStrings.h"
#include "vcl/Forms.h"

#include <functional>

namespace tarn {

enum TSpcFormOption : std::uint8_t {
    foAutoSaveParams,
    foAreasDynamicResize,
    foModalShowing,
    foStayOnTop,
    foTreeExpandOnEnter,
    foEllipsisLabels,
    foMultiLineCaptions
};
inline constexpr std::string_view SpcFormOptionNames[] = {
    "foAutoSaveParams",    "foAreasDynamicResize", "foModalShowing",     "foStayOnTop",
    "foTreeExpandOnEnter", "foEllipsisLabels",     "foMultiLineCaptions"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TSpcFormOption> = EnumType("TSpcFormOption",
                                                                 SpcFormOptionNames);
using TSpcFormOptions = TSet<TSpcFormOption>;

/// One of the two areas of the editor's rows, the labels or the controls.
struct TPaintAreaInfo {
    int DefAreaWidth = 0; ///< in pixels
    int LeftMargin = 0;
    int RightMargin = 0;
};

/// Fills the tree that the editor works on.
using TCreateSpc = TMethod<void(TObject* sender, TSpcObject& spc)>;

/// The settings editor: what it edits and how it shows it. Its window is brought by the slot
/// `ShowWindow`.
class TSpcEditor : public TComponent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TSpcEditor(TComponent* owner = nullptr) : TComponent(owner) {}

    int ColCount = 1; ///< columns of property rows
    TPaintAreaInfo LabelAreaInfo{100, 3, 2};
    TPaintAreaInfo ControlAreaInfo{150, 2, 3};
    TStringList DisabledProps;  ///< full names of properties shown but not editable
    TStringList InvisibleProps; ///< full names of properties not shown
    /// INI text: sections named after classes, a display caption for each property.
    std::string TranslatingTable;
    static constexpr TSpcFormOptions BaseFormOptions{foAreasDynamicResize, foModalShowing,
                                                     foTreeExpandOnEnter, foMultiLineCaptions};
    TSpcFormOptions FormOptions = BaseFormOptions;
    TCreateSpc OnCreateSpc;

    const std::string& SpcFileName() const { return FSpcFileName; }
    void SetSpcFileName(std::string_view name) { FSpcFileName = name; }

    /// Shows the tree and returns when the window is closed; true when the settings were changed
    /// and saved. False at once while no front end has filled the slot.
    bool ShowTree(TSpcObject& root);

    using TShowWindow = std::function<bool(TSpcEditor& editor, TSpcObject& root)>;
    static TShowWindow ShowWindow;

    /// The form's own saved state, one section of an ini text.
    virtual void ReadFormSetting(std::string_view section, std::string_view ident, TStrings& data);
    virtual void WriteFormSetting(std::string_view section, std::string_view ident,
                                  const TStrings& data);

private:
    std::string FSpcFileName;
};

/// The settings editor with the extended kinds of properties.
class TSpcEditorPro : public TSpcEditor {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    using TSpcEditor::TSpcEditor;
};

} // namespace tarn
