// The menu of the rows with pictures.

#include "RowMenu.h"
#include "TSpcImage.h"
#include "qsSpcEdPro.h"
#include "vcl/Clipbrd.h"
#include "vcl/Dialogs.h"

namespace tarn {
namespace {

enum TPicCommand : int {
    pcLine = 0,
    pcLoadFromFile = 51532,
    pcLoadFromClipboard = 51533,
    pcSaveToFile = 51534,
    pcSaveToClipboard = 51535,
    pcClear = 51536,
    pcClearClipboard = 51537
};
constexpr int PicCommands[] = {pcLoadFromFile, pcLoadFromClipboard, pcLine,
                               pcSaveToFile,   pcSaveToClipboard,   pcLine,
                               pcClear,        pcClearClipboard};

bool ChangesPicture(int command) {
    return command == pcLoadFromFile || command == pcLoadFromClipboard || command == pcClear;
}

bool CanRun(int command, TSpcImage* image) {
    if (!image || (ChangesPicture(command) && !image->Enabled())) return false;
    if (command == pcLoadFromClipboard) return Clipboard().HasPicture();
    const bool saves = command == pcSaveToFile || command == pcSaveToClipboard;
    return !saves || !image->Picture().Empty();
}

} // namespace

TPopupMenu& TSpcEditorPro::CreatePicEditorMenu() {
    if (!FPicMenu) {
        FPicMenu = new TPopupMenu(this);
        FPicMenu->OnPopup = TNotifyEvent::Of<&TSpcEditorPro::PicMenuPopup>(this);
        AddRowMenuItems(*FPicMenu, PicCommands,
                        TNotifyEvent::Of<&TSpcEditorPro::PicMenuItemClick>(this));
    }
    return *FPicMenu;
}

void TSpcEditorPro::PicMenuPopup(TObject*) {
    auto* const image = ClassCast<TSpcImage>(FPicMenu->PopupComponent.Get());
    UpdateRowMenuItems(*FPicMenu, [image](int command) { return CanRun(command, image); });
}

/// What changes the picture counts as a change by the image's own event.
void TSpcEditorPro::PicMenuItemClick(TObject* sender) {
    auto* const image = ClassCast<TSpcImage>(FPicMenu->PopupComponent.Get());
    const auto command = static_cast<TPicCommand>(static_cast<TMenuItem*>(sender)->Tag);
    if (!CanRun(command, image)) return;
    switch (command) {
    case pcLoadFromFile:
        return LoadPic(*image);
    case pcLoadFromClipboard:
        Clipboard().GetPicture(image->Picture());
        break;
    case pcSaveToFile:
        return SavePic(*image);
    case pcSaveToClipboard:
        return Clipboard().SetPicture(image->Picture());
    case pcClear:
        return image->Picture().Clear();
    case pcClearClipboard:
        return Clipboard().Clear();
    case pcLine:
        break;
    }
}

void TSpcEditorPro::LoadPic(TSpcImage& image) {
    const TWeak<TSpcImage> alive(&image);
    TOpenDialog dialog;
    dialog.Filter = GraphicFilter();
    if (dialog.Execute() && alive) image.Picture().LoadFromFile(dialog.FileName);
}

void TSpcEditorPro::SavePic(TSpcImage& image) {
    const TWeak<TSpcImage> alive(&image);
    TSaveDialog dialog;
    dialog.Filter = GraphicFilter();
    dialog.DefaultExt = FormatOf(*image.Picture().Graphic()).Extension;
    if (dialog.Execute() && alive) image.Picture().SaveToFile(dialog.FileName);
}

void TSpcEditorPro::ImageDblClick(TObject* sender) {
    LoadPic(*static_cast<TSpcImage*>(sender));
}

} // namespace tarn
