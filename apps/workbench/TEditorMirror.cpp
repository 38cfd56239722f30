#include "TEditorMirror.h"

#include "Source/TSourceBuffer.h"
#include "TFrontEnd.h"

#include <QFontDatabase>
#include <QKeyEvent>
#include <QVBoxLayout>
#include <Qsci/qscilexercpp.h>
#include <Qsci/qscilexerpascal.h>

#include <algorithm>

namespace tarn {

std::unique_ptr<TMirror> TEditorMirror::For(TFrontEnd& frontEnd, TControl& control) {
    if (&control != &frontEnd.Ide().EditWindow().Editor()) return nullptr;
    return std::make_unique<TEditorMirror>(frontEnd, control);
}

TEditorMirror::TEditorMirror(TFrontEnd& frontEnd, TControl& control)
    : TMirror(frontEnd, control, new QsciScintilla) {
    QsciScintilla& view = View();
    view.setUtf8(true);
    view.setMarginType(0, QsciScintilla::NumberMargin);
    view.setMarginWidth(0, "00000");
    view.setMarginWidth(1, 0);
    view.setTabWidth(8);
    view.setIndentationsUseTabs(false);
    view.setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    view.SendScintilla(QsciScintilla::SCI_SETMULTIPLESELECTION, 0);
    view.SendScintilla(QsciScintilla::SCI_SETVIRTUALSPACEOPTIONS,
                       QsciScintilla::SCVS_RECTANGULARSELECTION |
                           QsciScintilla::SCVS_USERACCESSIBLE);
    view.setAccessibleName("Source");
    view.installEventFilter(this);
    connect(&view, &QsciScintillaBase::SCN_MODIFIED, this,
            [this](int position, int modification, const char* text, int length) {
                TakeChange(position, modification, text, length);
            });
    connect(&view, &QsciScintillaBase::SCN_UPDATEUI, this, [this](int) { TakeSelection(); });
    connect(&view, &QsciScintilla::linesChanged, this, [this] {
        const int digits = QString::number(View().lines()).size();
        View().setMarginWidth(0, QString(std::max(digits, 3) + 1, '0'));
    });
}

TEditorMirror::~TEditorMirror() = default;

void TEditorMirror::SyncPlace() {
    TControl* const window = Control().Parent();
    QWidget* const holder = window ? FrontEnd().WidgetOf(*window) : nullptr;
    if (!holder || !holder->layout() || Widget()->parentWidget() == holder) return;
    if (QWidget* const tabs = FrontEnd().WidgetOf(FrontEnd().Ide().EditWindow().TabControl()))
        holder->layout()->addWidget(tabs);
    holder->layout()->addWidget(Widget());
}

// --- From the buffer to the widget -------------------------------------------------------------

void TEditorMirror::Follow() {
    TSourceBuffer* const buffer = FrontEnd().Ide().CurrentBuffer();
    const TScopedValue following(FFollowing, true);
    if (buffer != FBuffer) ShowBuffer(buffer);
    Widget()->setEnabled(buffer != nullptr);
    if (!buffer) return;
    TDocument& document = FDocuments[buffer];
    if (!document.Filled || document.Revision != buffer->Text().Revision())
        ShowText(*buffer, document);
    ShowSelection(*buffer);
}

void TEditorMirror::ShowBuffer(TSourceBuffer* buffer) {
    FBuffer = buffer;
    // Documents of buffers that are closed go.
    const auto& loaded = FrontEnd().Ide().EditWindow().LoadedBuffers();
    std::erase_if(FDocuments, [&](const auto& entry) {
        return std::find(loaded.begin(), loaded.end(), entry.first) == loaded.end();
    });
    View().setDocument(buffer ? FDocuments[buffer].Document : QsciDocument());
    View().SendScintilla(QsciScintilla::SCI_SETUNDOCOLLECTION, 0ul);
    if (buffer) ChooseLexer(*buffer);
}

void TEditorMirror::ChooseLexer(const TSourceBuffer& buffer) {
    static const QStringList cpp = {".cpp", ".c", ".h", ".hpp", ".bpr", ".bpk"};
    const QString name = FromText(buffer.FileName()).toLower();
    const bool isCpp =
        std::any_of(cpp.begin(), cpp.end(), [&](const QString& ext) { return name.endsWith(ext); });
    delete View().lexer();
    QsciLexer* const lexer = isCpp ? static_cast<QsciLexer*>(new QsciLexerCPP(&View()))
                                   : static_cast<QsciLexer*>(new QsciLexerPascal(&View()));
    lexer->setDefaultFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    const QPalette& palette = View().palette();
    const bool dark = palette.base().color().lightness() < 128;
    lexer->setDefaultPaper(palette.base().color());
    lexer->setPaper(palette.base().color());
    for (int style = 0; style < 128; ++style) {
        lexer->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont), style);
        // The lexers' colours are made for a light ground.
        if (dark) {
            const QColor color = lexer->color(style);
            lexer->setColor(QColor::fromHsl(color.hslHue(), color.hslSaturation(),
                                            std::max(200, color.lightness())),
                            style);
        }
    }
    View().setLexer(lexer);
    View().setCaretForegroundColor(palette.text().color());
    View().setMarginsBackgroundColor(palette.window().color());
    View().setMarginsForegroundColor(palette.windowText().color());
}

/// Replaces the bytes between what both texts begin and end with.
void TEditorMirror::ShowText(TSourceBuffer& buffer, TDocument& document) {
    const std::array<std::string_view, 2> chunks = buffer.Text().Chunks();
    const std::size_t size = chunks[0].size() + chunks[1].size();
    const auto at = [&](std::size_t i) {
        return i < chunks[0].size() ? chunks[0][i] : chunks[1][i - chunks[0].size()];
    };
    const auto shownSize =
        static_cast<std::size_t>(View().SendScintilla(QsciScintilla::SCI_GETLENGTH));
    const auto* const shown = static_cast<const char*>(
        View().SendScintillaPtrResult(QsciScintilla::SCI_GETCHARACTERPOINTER));
    const std::size_t most = std::min(size, shownSize);
    std::size_t front = 0;
    while (front < most && shown[front] == at(front)) ++front;
    std::size_t back = 0;
    while (back < most - front && shown[shownSize - 1 - back] == at(size - 1 - back)) ++back;
    const std::string middle = buffer.Text().Text(front, size - back);
    View().SendScintilla(QsciScintilla::SCI_SETTARGETRANGE, front,
                         static_cast<long>(shownSize - back));
    View().SendScintilla(QsciScintilla::SCI_REPLACETARGET, middle.size(), middle.data());
    document.Revision = buffer.Text().Revision();
    document.Filled = true;
}

void TEditorMirror::ShowSelection(TSourceBuffer& buffer) {
    const TSourceView& source = *buffer.View();
    const TEditText& text = buffer.Text();
    const auto place = [&](TTextPos pos) { return static_cast<long>(text.OffsetAt(pos)); };
    const auto beyond = [&](TTextPos pos) {
        return std::max(pos.Col - 1 - static_cast<int>(text.LineLength(pos.Row)), 0);
    };
    const TTextPos caret = source.Cursor();
    const TTextPos anchor = !source.HasBlock()             ? caret
                            : caret == source.BlockStart() ? source.BlockEnd()
                                                           : source.BlockStart();
    QsciScintilla& view = View();
    if (source.BlockStyle() == btColumn && source.HasBlock()) {
        view.SendScintilla(QsciScintilla::SCI_SETRECTANGULARSELECTIONANCHOR, place(anchor));
        view.SendScintilla(QsciScintilla::SCI_SETRECTANGULARSELECTIONANCHORVIRTUALSPACE,
                           beyond(anchor));
        view.SendScintilla(QsciScintilla::SCI_SETRECTANGULARSELECTIONCARET, place(caret));
        view.SendScintilla(QsciScintilla::SCI_SETRECTANGULARSELECTIONCARETVIRTUALSPACE,
                           beyond(caret));
        return;
    }
    if (view.SendScintilla(QsciScintilla::SCI_GETANCHOR) != place(anchor) ||
        view.SendScintilla(QsciScintilla::SCI_GETCURRENTPOS) != place(caret) ||
        view.SendScintilla(QsciScintilla::SCI_SELECTIONISRECTANGLE)) {
        view.SendScintilla(QsciScintilla::SCI_SETSELECTIONMODE, QsciScintilla::SC_SEL_STREAM);
        view.SendScintilla(QsciScintilla::SCI_SETSEL, static_cast<unsigned long>(place(anchor)),
                           place(caret));
    }
    view.SendScintilla(QsciScintilla::SCI_SETSELECTIONNCARETVIRTUALSPACE, 0, beyond(caret));
    view.SendScintilla(QsciScintilla::SCI_SETSELECTIONNANCHORVIRTUALSPACE, 0, beyond(anchor));
}

// --- From the widget to the buffer -------------------------------------------------------------

void TEditorMirror::TakeChange(int position, int modification, const char* text, int length) {
    constexpr int inserted = QsciScintilla::SC_MOD_INSERTTEXT;
    constexpr int deleted = QsciScintilla::SC_MOD_DELETETEXT;
    if (FFollowing || (modification & (inserted | deleted)) == 0) return;
    TSourceBuffer* const buffer = FrontEnd().Ide().CurrentBuffer();
    if (!buffer || buffer != FBuffer) return;
    const TScopedValue taking(FTaking, true);
    const auto from = static_cast<std::size_t>(position);
    const bool isInsert = (modification & inserted) != 0;
    FrontEnd().Ide().RunCommand(
        [&] {
            const TSourceBuffer::TEditScope scope(*buffer);
            buffer->Text().Replace(from, isInsert ? from : from + static_cast<std::size_t>(length),
                                   isInsert
                                       ? std::string_view(text, static_cast<std::size_t>(length))
                                       : std::string_view());
            const std::size_t caret = isInsert ? from + static_cast<std::size_t>(length) : from;
            buffer->View()->MoveTo(buffer->Text().PosAt(caret));
        },
        length == 1 ? gkTyping : gkCommand);
    FDocuments[buffer].Revision = buffer->Text().Revision();
}

void TEditorMirror::TakeSelection() {
    TSourceBuffer* const buffer = FrontEnd().Ide().CurrentBuffer();
    if (FFollowing || FTaking || !buffer || buffer != FBuffer) return;
    if (FDocuments[buffer].Revision != buffer->Text().Revision()) return;
    QsciScintilla& view = View();
    const auto ask = [&](unsigned message) {
        return static_cast<int>(view.SendScintilla(message, 0ul));
    };
    const auto pos = [&](int offset, int beyond) {
        TTextPos at = buffer->Text().PosAt(static_cast<std::size_t>(offset));
        at.Col += beyond;
        return at;
    };
    const bool column = ask(QsciScintilla::SCI_SELECTIONISRECTANGLE) != 0;
    const TTextPos anchor =
        column ? pos(ask(QsciScintilla::SCI_GETRECTANGULARSELECTIONANCHOR),
                     ask(QsciScintilla::SCI_GETRECTANGULARSELECTIONANCHORVIRTUALSPACE))
               : pos(ask(QsciScintilla::SCI_GETANCHOR),
                     ask(QsciScintilla::SCI_GETSELECTIONNANCHORVIRTUALSPACE));
    const TTextPos caret =
        column ? pos(ask(QsciScintilla::SCI_GETRECTANGULARSELECTIONCARET),
                     ask(QsciScintilla::SCI_GETRECTANGULARSELECTIONCARETVIRTUALSPACE))
               : pos(ask(QsciScintilla::SCI_GETCURRENTPOS),
                     ask(QsciScintilla::SCI_GETSELECTIONNCARETVIRTUALSPACE));
    TSourceView& source = *buffer->View();
    if (anchor == caret)
        source.MoveTo(caret);
    else if (caret < anchor)
        source.Select(caret, anchor, column ? btColumn : btNonInclusive, true);
    else
        source.Select(anchor, caret, column ? btColumn : btNonInclusive);
}

bool TEditorMirror::eventFilter(QObject*, QEvent* event) {
    if (event->type() == QEvent::FocusIn) {
        TEditWindow& window = FrontEnd().Ide().EditWindow();
        if (!window.EditorHasFocus() && window.Visible()) Control().SetFocus();
    }
    return false;
}

} // namespace tarn
