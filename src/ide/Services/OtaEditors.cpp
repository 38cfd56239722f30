#include "Services/OtaEditors.h"

#include "Modules/TIdeModule.h"
#include "Services/TOtaAdapter.h"
#include "TIde.h"

#include <algorithm>
#include <limits>

namespace tarn {
namespace {

int Sum(int a, int b) {
    constexpr std::int64_t most = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(std::int64_t{a} + b, -most, most));
}

class TOtaEditPosition : public TOtaAdapter<TSourceView, IOTAEditPosition> {
public:
    using TOtaAdapter::TOtaAdapter;

    int GetRow() override {
        return Ask([](TSourceView& view) { return view.Cursor().Row; });
    }
    int GetColumn() override {
        return Ask([](TSourceView& view) { return view.Cursor().Col; });
    }
    char GetCharacter() override {
        return Ask([](TSourceView& view) { return view.CharAtCursor(); });
    }
    bool Move(int row, int col) override {
        return Ask([&](TSourceView& view) { return view.MoveTo({row, col}); });
    }
    bool MoveRelative(int deltaRow, int deltaCol) override {
        return Ask([&](TSourceView& view) {
            const TTextPos cursor = view.Cursor();
            return view.MoveTo({Sum(cursor.Row, deltaRow), Sum(cursor.Col, deltaCol)});
        });
    }
    void InsertText(std::string_view text) override {
        Ask([&](TSourceView& view) { view.InsertText(text); });
    }
};

class TOtaEditBlock : public TOtaAdapter<TSourceView, IOTAEditBlock> {
public:
    using TOtaAdapter::TOtaAdapter;

    TOTABlockType GetStyle() override {
        return Ask([](TSourceView& view) { return view.BlockStyle(); });
    }
    bool GetIsValid() override {
        return Ask([](TSourceView& view) { return view.HasBlock(); });
    }
    std::string GetText() override {
        return Ask([](TSourceView& view) { return view.BlockText(); });
    }
    int GetStartingRow() override {
        return Ask([](TSourceView& view) { return view.BlockStart().Row; });
    }
    int GetStartingColumn() override {
        return Ask([](TSourceView& view) { return view.BlockStart().Col; });
    }
    int GetEndingRow() override {
        return Ask([](TSourceView& view) { return view.BlockEnd().Row; });
    }
    int GetEndingColumn() override {
        return Ask([](TSourceView& view) { return view.BlockEnd().Col; });
    }
    bool Extend(int row, int col) override {
        return Ask([&](TSourceView& view) { return view.ExtendTo({row, col}); });
    }
};

class TOtaEditWindow : public TOtaAdapter<TEditWindow, INTAEditWindow> {
public:
    using TOtaAdapter::TOtaAdapter;

    TForm* GetForm() override {
        return Ask([](TEditWindow& window) -> TForm* { return &window; });
    }
};

class TOtaEditView : public TOtaAdapter<TSourceView, IOTAEditView> {
public:
    using TOtaAdapter::TOtaAdapter;

    TIntf<IOTAEditBlock> GetBlock() override {
        return Ask(
            [](TSourceView& view) -> TIntf<IOTAEditBlock> { return new TOtaEditBlock(view); });
    }
    TIntf<IOTAEditBuffer> GetBuffer() override {
        return Ask([](TSourceView& view) { return view.Buffer().BufferInterface(); });
    }
    TIntf<IOTAEditPosition> GetPosition() override {
        return Ask([](TSourceView& view) -> TIntf<IOTAEditPosition> {
            return new TOtaEditPosition(view);
        });
    }
    TIntf<INTAEditWindow> GetEditWindow() override {
        return Ask([](TSourceView& view) -> TIntf<INTAEditWindow> {
            return new TOtaEditWindow(view.Buffer().Module().Ide().EditWindow());
        });
    }
    int GetTopRow() override {
        return Ask([](TSourceView& view) { return view.TopRow(); });
    }
    int GetBottomRow() override {
        return Ask([](TSourceView& view) { return view.BottomRow(); });
    }
    void Scroll(int deltaRow, int deltaCol) override {
        Ask([&](TSourceView& view) { view.Scroll(deltaRow, deltaCol); });
    }
    void Paint() override {
        Ask([](TSourceView& view) { view.Paint(); });
    }
};

class TOtaBufferOptions : public TOtaAdapter<TSourceBuffer, IOTABufferOptions> {
public:
    using TOtaAdapter::TOtaAdapter;

    bool GetAutoIndent() override {
        return Ask([](TSourceBuffer& buffer) { return buffer.AutoIndent; });
    }
    void SetAutoIndent(bool value) override {
        Ask([&](TSourceBuffer& buffer) { buffer.AutoIndent = value; });
    }
};

class TOtaEditBuffer : public TOtaFileEditor<TSourceBuffer, IOTAEditBuffer> {
public:
    using TOtaFileEditor::TOtaFileEditor;

    int GetEditViewCount() override {
        return Ask([](TSourceBuffer& buffer) { return buffer.IsLoaded() ? 1 : 0; });
    }
    TIntf<IOTAEditView> GetEditView(int index) override {
        return index == 0 ? GetTopView() : nullptr;
    }
    TIntf<IOTABufferOptions> GetBufferOptions() override {
        return Ask([](TSourceBuffer& buffer) -> TIntf<IOTABufferOptions> {
            return new TOtaBufferOptions(buffer);
        });
    }
    TIntf<IOTAEditView> GetTopView() override {
        return Ask([](TSourceBuffer& buffer) {
            return buffer.View() ? buffer.View()->Interface() : TIntf<IOTAEditView>();
        });
    }
};

class TOtaKeyContext : public TOtaAdapter<TSourceBuffer, IOTAKeyContext> {
public:
    using TOtaAdapter::TOtaAdapter;

    TIntf<IOTAEditBuffer> GetEditBuffer() override {
        return Ask([](TSourceBuffer& buffer) { return buffer.BufferInterface(); });
    }
};

} // namespace

TIntf<IOTAEditBuffer> MakeEditBufferInterface(TSourceBuffer& buffer) {
    return new TOtaEditBuffer(buffer);
}

TIntf<IOTAEditView> MakeEditViewInterface(TSourceView& view) {
    return new TOtaEditView(view);
}

TIntf<IOTAKeyContext> MakeKeyContext(TSourceBuffer& buffer) {
    return new TOtaKeyContext(buffer);
}

} // namespace tarn
