#pragma once

#include "os/portable/TPortableOS.h"
#include "qsSpcEditor.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace tarn {

/// A process with a screen, in which an editor's window can be shown. Modal windows run `Modal`,
/// after the posted messages, and are then closed until they are.
template <class Editor = TSpcEditor> class TEditorTest : public testing::Test {
protected:
    TEditorTest() : FBefore(InstallOS(&OS)), App(std::make_unique<TApplication>()) {
        Ed = std::make_unique<Editor>();
    }
    ~TEditorTest() override {
        Ed.reset();
        App.reset();
        InstallOS(FBefore);
    }

    /// Opens the window of an object, not modal, with its start node selected.
    void Open(TPersistent& root) {
        Ed->FormOptions.Exclude(foModalShowing);
        Ed->ShowTree(root);
        App->ProcessMessages();
    }
    TTreeView& Tree() { return Ed->Form()->Tree(); }
    /// The node of those captions below the first one; the first one itself for none.
    TTreeNode* Node(const std::vector<std::string>& path = {}) {
        TTreeNode* node = Tree().Items().GetFirstNode();
        for (const std::string& caption : path) {
            node = node->GetFirstChild();
            while (node && node->Text() != caption) node = node->GetNextSibling();
            if (!node) throw Exception("no node " + caption);
        }
        return node;
    }
    /// The row of a property on show.
    TControlInfo& Row(std::string_view prop) {
        for (int i = 0; i < Ed->Controls().Count(); ++i)
            if (Ed->Controls().Get(i).EPropInfo->Name == prop) return Ed->Controls().Get(i);
        throw Exception("no row " + std::string(prop));
    }
    template <class T> T& Control(std::string_view prop) {
        return dynamic_cast<T&>(*Row(prop).EControl);
    }
    /// The tree, a line for each node, indented.
    std::string TreeText() {
        std::string text;
        for (TTreeNode* node = Tree().Items().GetFirstNode(); node; node = node->GetNext())
            text += std::string(static_cast<std::size_t>(node->Level()), ' ') + node->Text() + "\n";
        return text;
    }
    /// The rows, a line for each: label, control, place of both.
    std::string RowsText() {
        const auto place = [](const TControl& control) {
            const TRect& at = control.BoundsRect();
            return Format("%d,%d %dx%d", {at.Left, at.Top, at.Width, at.Height});
        };
        std::string text;
        for (int i = 0; i < Ed->Controls().Count(); ++i) {
            const TControlInfo& info = Ed->Controls().Get(i);
            text += Format("%s [%s] %s [%s]%s\n",
                           {info.Label->Caption(), place(*info.Label), info.EControl->ClassName(),
                            place(*info.EControl), info.EControl->Enabled() ? "" : " disabled"});
        }
        return text;
    }

    TPortableOS OS;

private:
    TOperatingSystem* FBefore;

protected:
    TScreen Scr;
    std::unique_ptr<TApplication> App;
    std::unique_ptr<Editor> Ed;
};

} // namespace tarn
