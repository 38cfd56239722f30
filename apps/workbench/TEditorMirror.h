#pragma once

#include "Source/TSourceView.h"
#include "TMirror.h"
#include "TSourceEdit.h"

#include <QPoint>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>

class QKeyEvent;

namespace tarn {

class TSourceBuffer;

/// The source editor: shows the text of the current buffer, byte for byte, with its cursor, its
/// block and the rows that are seen. What the user does in the widget is done to the buffer, one
/// undo step a command, and whatever else changes the buffer is shown. Undo is the buffer's own.
///
/// The two never disagree for longer than an event: what changes in the widget is taken at once,
/// and where both have changed, or the buffer does not take a change, the buffer is shown.
class TEditorMirror : public TMirror {
public:
    /// The mirror of the IDE's editor control; null for any other control.
    static std::unique_ptr<TMirror> For(TFrontEnd& frontEnd, TControl& control);

    TEditorMirror(TFrontEnd& frontEnd, TControl& control);
    ~TEditorMirror() override;

    /// Gets how many bytes of a long text are shown so far. With false the rest is shown another
    /// time.
    using TFillStep = std::function<bool(std::uint64_t done, std::uint64_t size)>;
    TFillStep OnFill;

    QsciScintilla& View() const { return static_cast<QsciScintilla&>(*Widget()); }
    /// Shows what the buffer has become, or takes what the user has done in the widget.
    void Follow();
    /// Takes what the user has done in the widget, unless the buffer is another than is shown.
    void Take();

    // What the widget hands on.
    /// Does what the buffer or the IDE does on a key; false when it is the widget's own.
    bool TakeKey(const QKeyEvent& event);
    void Type(const QString& text);
    /// Runs what the widget does by itself as one command of the user.
    void AsOne(const std::function<void()>& action);
    /// Puts the text to a place of the viewport, as a paste does.
    void PasteAt(QPoint place, const QString& text);
    /// Shows the menu of the editor, which has the commands of the menu "Edit".
    void ShowMenu(QPoint place);
    void Focused();
    /// Takes the colours of the palette.
    void Recolour();

protected:
    void SyncPlace() override;
    void SyncState() override { Follow(); }

private:
    /// What a widget shows of a buffer, as it was when the two last agreed.
    struct TDocument {
        TWeak<TSourceBuffer> Buffer;
        QsciDocument Document;
        std::optional<std::uint64_t> Revision;
        std::optional<TViewState> State;
        int TopRow = 0, LeftColumn = 0;
    };
    /// The ends of the widget's selection: byte offsets, and columns of virtual space.
    struct TSelection {
        bool Column = false;
        long Anchor = 0, AnchorBeyond = 0;
        long Caret = 0, CaretBeyond = 0;
        bool operator==(const TSelection&) const = default;
    };

    bool Agrees() const;
    void ShowBuffer(TSourceBuffer* buffer);
    bool ShowText(TSourceBuffer& buffer, TDocument& document);
    bool Insert(const TEditText& text, std::size_t from, std::size_t to);
    void ShowSelection(const TSourceBuffer& buffer);
    void ShowColumns(const TSourceBuffer& buffer);
    void ShowPlace(TSourceView& source, TDocument& document, bool moved, bool another);
    void ShowMargin();
    void ChooseLexer(const TSourceBuffer& buffer);
    TSelection Selection() const;
    void TakeChange(int position, int modification, const char* text, int length);
    void TakeSelection(TSourceBuffer& buffer);
    void TakePlace(TSourceView& source, TDocument& document) const;
    static std::pair<long, long> PlaceOf(const TEditText& text, TTextPos pos);
    int ColumnWidth() const; ///< in pixels
    long Ask(unsigned message) const { return View().SendScintilla(message); }
    void Tell(unsigned message, long first = 0, long second = 0) const {
        View().SendScintilla(message, static_cast<unsigned long>(first), second);
    }

    TWeak<TSourceBuffer> FBuffer;         ///< that is shown
    TDocument* FDocument = nullptr;       ///< of that buffer
    std::optional<TSelection> FSelection; ///< of the widget, when they last agreed
    std::map<const TSourceBuffer*, TDocument> FDocuments;
    bool FFollowing = false; ///< the widget is being changed
};

} // namespace tarn
