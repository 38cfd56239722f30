#pragma once

#include "qsSpcEditor.h"

namespace tarn {

/// While it lives, rows that are taken off stay in memory: a handler may take off those that its
/// caller is about to go on with. The editor itself may go.
class TSpcEditor::TRowWalk {
public:
    explicit TRowWalk(TSpcEditor& editor) : FEditor(&editor) { ++editor.FWalks; }
    TRowWalk(const TRowWalk&) = delete;
    TRowWalk& operator=(const TRowWalk&) = delete;
    ~TRowWalk() {
        if (FEditor && --FEditor->FWalks == 0) FEditor->FreeGone();
    }

private:
    TWeak<TSpcEditor> FEditor;
};

} // namespace tarn
