#pragma once

#include "TMirror.h"

#include <Qsci/qsciscintilla.h>

#include <cstdint>
#include <map>
#include <memory>

namespace tarn {

class TSourceBuffer;

/// The source editor: shows the text of the current buffer, byte for byte, with its cursor and its
/// block. What the user does in the widget is done to the buffer, one undo step a command, and
/// whatever else changes the buffer is shown. Undo is the buffer's own.
class TEditorMirror : public TMirror {
public:
    /// The mirror of the IDE's editor control; null for any other control.
    static std::unique_ptr<TMirror> For(TFrontEnd& frontEnd, TControl& control);

    TEditorMirror(TFrontEnd& frontEnd, TControl& control);
    ~TEditorMirror() override;

    QsciScintilla& View() const { return static_cast<QsciScintilla&>(*Widget()); }
    /// Shows what the buffer has become.
    void Follow();

protected:
    void SyncPlace() override;
    void SyncState() override { Follow(); }
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    struct TDocument {
        QsciDocument Document;
        std::uint64_t Revision = 0;
        bool Filled = false;
    };

    void ShowBuffer(TSourceBuffer* buffer);
    void ShowText(TSourceBuffer& buffer, TDocument& document);
    void ShowSelection(TSourceBuffer& buffer);
    void ChooseLexer(const TSourceBuffer& buffer);
    void TakeChange(int position, int modification, const char* text, int length);
    void TakeSelection();

    TSourceBuffer* FBuffer = nullptr; ///< that is shown; compared, and used while it is the current
    std::map<const TSourceBuffer*, TDocument> FDocuments;
    bool FFollowing = false; ///< the widget is being changed
    bool FTaking = false;    ///< the buffer is being changed
};

} // namespace tarn
