#pragma once

#include "qsSpcEditor.h"
#include "vcl/TMenuItem.h"

#include <span>
#include <string>
#include <string_view>

namespace tarn {

class TSpcImage;

/// What an editor with extended kinds keeps under itself, see GetUserData, unless its host has put
/// data of its own there before: who has the editor as a mere component finds its kinds by it.
struct TSpcEditorProData {
    std::string_view Ident;
    std::span<const TPropKind> Kinds;
};

/// The settings editor with the extended kinds of properties.
class TSpcEditorPro : public TSpcEditor {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    /// The native marker of the rows of extended kinds.
    static constexpr std::int32_t ProMarker = 1;

    explicit TSpcEditorPro(TComponent* owner = nullptr);

    void Init(const TInitData& data) override;
    bool CanProcessProperty(TPersistent& instance, const TPropInfo& prop) override;
    void SetControlData(TControlInfo& info) override;
    void GetControlData(TControlInfo& info) override;

    // The menus, made once and shared by the rows; components of the editor. Their captions follow
    // the language each time they are shown.
    TPopupMenu& CreatePicEditorMenu();
    TPopupMenu& CreateStringsEditorMenu();

protected:
    std::string DefaultParams() const override { return BuiltInParams() + ExtendedParams(); }
    bool BecomesNode(const TPropInfo& prop) const override;
    void DoBeforeCreateControl(TControlInfo& info, TNewControlData& data, bool& handled) override;
    /// Gives the controls of extended kinds their menus and dialogs.
    void DoAfterCreateControl(TControlInfo& info) override;

private:
    class TLineList;

    static const TPropKind* KindOfRow(const TControlInfo& info);
    void AttachMenus(TControlInfo& info);
    // Pictures
    void PicMenuPopup(TObject*);
    void PicMenuItemClick(TObject* sender);
    static void LoadPic(TSpcImage& image);
    static void SavePic(TSpcImage& image);
    void ImageDblClick(TObject* sender);
    // Lines
    void StringsMenuPopup(TObject*);
    void StringsMenuItemClick(TObject* sender);
    bool AskForText(int command, const TLineList& list, std::string& text) const;
    void MemoDblClick(TObject* sender);

    TSpcEditorProData FData{"_@SpcEditorPro", ExtendedKinds()};
    TWeak<TPopupMenu> FPicMenu;     ///< owned
    TWeak<TPopupMenu> FStringsMenu; ///< owned
};

} // namespace tarn
