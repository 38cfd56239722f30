#include "vcl/StandardControls.h"

#include "vcl/TButton.h"
#include "vcl/TCheckBox.h"
#include "vcl/TComboBox.h"
#include "vcl/TLabel.h"
#include "vcl/TListBox.h"
#include "vcl/TMemo.h"
#include "vcl/TPanel.h"
#include "vcl/TSpinEdit.h"
#include "vcl/TStringGrid.h"
#include "vcl/TTabControl.h"
#include "vcl/TTimer.h"
#include "vcl/TToolBar.h"

namespace tarn {

void RegisterStandardControls() {
    for (const TClassRecord* record :
         {&TAction::ClassRecord,     &TActionList::ClassRecord, &TButton::ClassRecord,
          &TCheckBox::ClassRecord,   &TComboBox::ClassRecord,   &TEdit::ClassRecord,
          &TImageList::ClassRecord,  &TLabel::ClassRecord,      &TListBox::ClassRecord,
          &TMainMenu::ClassRecord,   &TMemo::ClassRecord,       &TMenuItem::ClassRecord,
          &TPanel::ClassRecord,      &TPopupMenu::ClassRecord,  &TSpinEdit::ClassRecord,
          &TStringGrid::ClassRecord, &TTabControl::ClassRecord, &TTimer::ClassRecord,
          &TToolBar::ClassRecord,    &TToolButton::ClassRecord})
        RegisterClass(*record);
}

} // namespace tarn
