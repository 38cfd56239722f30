#pragma once

#include "vcl/Forms.h"

namespace tarn {

class TIde;

/// The IDE's main window "IdeMainForm": the menu bar, the list of actions and the pictures.
class TIdeMainForm : public TForm {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TIdeMainForm(TIde& ide);

    TMainMenu& MainMenu() { return *Menu; }
    TActionList& ActionList() { return *FActionList; }
    TImageList& Images() { return *FImages; }

private:
    TActionList* FActionList;
    TImageList* FImages;
};

} // namespace tarn
