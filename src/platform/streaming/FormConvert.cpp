#include "streaming/FormConvert.h"

#include "rtl/SafeFile.h"
#include "rtl/SameBytes.h"
#include "rtl/TStrings.h"
#include "rtl/Unicode.h"
#include "streaming/FormBinary.h"
#include "streaming/FormResource.h"
#include "streaming/FormValues.h"
#include "streaming/TFormPath.h"
#include "streaming/TFormTextParser.h"
#include "streaming/TFormTextPrinter.h"
#include "streaming/TFormTextString.h"
#include "streaming/TFormTree.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace tarn {
namespace {

constexpr std::string_view FormKeywords[] = {"object", "inherited", "inline"};

bool BeginsLikeText(std::string_view bytes) {
    if (bytes.starts_with(Utf8Mark)) bytes.remove_prefix(Utf8Mark.size());
    bytes.remove_prefix(std::min(bytes.find_first_not_of(" \t\r\n"), bytes.size()));
    return std::any_of(std::begin(FormKeywords), std::end(FormKeywords), [&](auto keyword) {
        return SameText(bytes.substr(0, keyword.size()), keyword);
    });
}

/// The beginning of a file for a message: as it is where it can be shown, else in hexadecimal.
std::string Beginning(std::string_view bytes) {
    constexpr std::size_t most = 16;
    bytes = bytes.substr(0, most);
    if (std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= ' ' && c <= '~'; }))
        return "'" + std::string(bytes) + "'";
    std::string hex;
    for (const char c : bytes) {
        const std::string digits = Format("%.2x", {static_cast<unsigned char>(c)});
        hex += (hex.empty() ? "" : " ") + digits;
    }
    return hex;
}

/// What may be wrong with a binary that makes no sense; nothing when there is no sign of it. A
/// program that takes a binary for a text makes LF of its CR LF, which leaves no CR at all.
std::string_view HintFor(std::string_view binary) {
    constexpr auto none = std::string_view::npos;
    if (binary.find('\r') != none || binary.find('\n') == none) return {};
    return "; no carriage return in the whole file: were its line ends converted as if it were "
           "text?";
}

/// To be called while an exception is handled, which is raised again where there is no hint.
[[noreturn]] void RethrowWithHint(std::string_view message, std::string_view binary) {
    const std::string_view hint = HintFor(binary);
    if (hint.empty()) throw;
    throw EFormError(std::string(message).append(hint));
}

/// Whether the characters go beyond ASCII, and none of them beyond 255.
bool IsShortWide(TValueType type, std::string_view text) {
    const std::u16string wide = type == vaWString ? Utf16OfBytes(text) : Utf8ToUtf16(text);
    const auto most = std::max_element(wide.begin(), wide.end());
    return most != wide.end() && *most > 127 && *most <= 255;
}

/// Notices which types the plain floats and the wide texts of a binary have. The first of each
/// counts: a text cannot keep more than one.
class TLayoutWatcher : public TFormFilter {
public:
    TLayoutWatcher(IFormSink& target, TFormLayout& layout) : TFormFilter(target), FLayout(layout) {}

    void Float(TValueType type, long double value) override {
        if (!FFloatSeen && (type == vaExtended || type == vaDouble)) {
            FFloatSeen = true;
            FLayout.PlainFloat = type;
        }
        TFormFilter::Float(type, value);
    }
    void String(TValueType type, std::string_view text) override {
        if (!FWideSeen && (type == vaWString || type == vaUTF8String)) {
            FWideSeen = true;
            FLayout.WideText = type;
        }
        if (!FLayout.WideCodes && (type == vaWString || type == vaUTF8String))
            FLayout.WideCodes = IsShortWide(type, text);
        TFormFilter::String(type, text);
    }

private:
    TFormLayout& FLayout;
    bool FFloatSeen = false;
    bool FWideSeen = false;
};

} // namespace

TFormFileKind FormFileKindOf(std::string_view bytes) {
    if (bytes.starts_with(FilerSignature)) return fkBinary;
    if (IsResource(bytes)) return fkResource;
    if (BeginsLikeText(bytes)) return fkText;
    throw EFormError(bytes.empty() ? "is no form file: it is empty"
                                   : "is no form file: it begins with " + Beginning(bytes));
}

// --- Reading ----------------------------------------------------------------------------------

struct TFormFileReader::TParsers {
    std::optional<TFormTextParser> Text;
    std::optional<TReader> Binary;
};

TFormFileReader::TFormFileReader(std::string_view bytes, const TFormLayout& layout)
    : FBytes(bytes), FKind(FormFileKindOf(bytes)), FLayout(layout),
      FParsers(std::make_unique<TParsers>()) {
    if (FKind == fkText)
        FParsers->Text.emplace(bytes, layout);
    else
        FParsers->Binary.emplace(bytes);
}

TFormFileReader::~TFormFileReader() = default;

bool TFormFileReader::AtEnd() {
    return FParsers->Text ? FParsers->Text->AtEnd() : FParsers->Binary->BytesLeft() == 0;
}

std::int64_t TFormFileReader::Offset() const {
    return FParsers->Text ? FParsers->Text->Offset() : FParsers->Binary->Position();
}

TFormLayout TFormFileReader::Layout() const {
    return FParsers->Text ? FParsers->Text->Layout() : FLayout;
}

void TFormFileReader::Read(IFormSink& sink) {
    if (FKind == fkText) return FParsers->Text->Parse(sink);
    TLayoutWatcher watcher(sink, FLayout);
    try {
        if (FKind == fkBinary) return ReadFormBinary(*FParsers->Binary, watcher);
        ReadResource(watcher);
    } catch (const EReadError& error) {
        RethrowWithHint(error.Message(), FBytes);
    } catch (const EFormError& error) {
        RethrowWithHint(error.Message(), FBytes);
    }
}

void TFormFileReader::ReadResource(IFormSink& sink) {
    TReader& reader = *FParsers->Binary;
    const std::int64_t start = reader.Position();
    const TResourceHead head = ReadResourceHead(FBytes.substr(static_cast<std::size_t>(start)));
    FResourceSizes.push_back(static_cast<std::size_t>(start + head.SizeAt));
    reader.SetPosition(start + head.DataAt());
    ReadFormBinary(reader, sink);
    const std::int64_t end = start + head.DataAt() + head.Size;
    if (reader.Position() != end)
        throw EFormError(
            Format("offset %d: the form in the resource ends %s %d",
                   {reader.Position(), reader.Position() < end ? "before" : "behind", end}));
}

void TFormFileReader::ReadAll(IFormSink& sink) {
    while (!AtEnd()) Read(sink);
}

// --- Writing ----------------------------------------------------------------------------------

TFormFileWriter::TFormFileWriter(TFormFileKind kind, const TFormLayout& layout, std::string& target)
    : FKind(kind), FLayout(layout), FTarget(target) {
    if (kind != fkText) return;
    FWriter = std::make_unique<TFormTextPrinter>(target, layout);
    SetTarget(*FWriter);
}

TFormFileWriter::~TFormFileWriter() = default;

void TFormFileWriter::BeginObject(const TFormHeader& header) {
    if (FDepth++ == 0 && FKind != fkText) {
        FWriter.reset();
        if (FKind == fkResource) {
            FTarget += FormResourceHead(header.ClassName, 0);
            FSizeAt = FTarget.size() - TResourceHead::SizeBytes;
        }
        FWriter = std::make_unique<TFormBinaryWriter>(FTarget);
        SetTarget(*FWriter);
    }
    TFormFilter::BeginObject(header);
}

void TFormFileWriter::EndObject() {
    TFormFilter::EndObject();
    if (--FDepth != 0 || FKind != fkResource) return;
    const std::size_t dataAt = FSizeAt + TResourceHead::SizeBytes;
    const std::string size = ResourceSizeBytes(static_cast<std::int64_t>(FTarget.size() - dataAt));
    FTarget.replace(FSizeAt, size.size(), size);
}

namespace {

class TProgressTeller : public TFormFilter {
public:
    TProgressTeller(IFormSink& target, const TFormFileReader& reader, const TFormProgress& progress)
        : TFormFilter(target), FReader(reader), FProgress(progress) {}

    void Property(std::string_view name) override {
        TFormFilter::Property(name);
        constexpr unsigned interval = 256;
        if (++FCount % interval == 0) FProgress(static_cast<std::size_t>(FReader.Offset()));
    }

private:
    const TFormFileReader& FReader;
    const TFormProgress& FProgress;
    unsigned FCount = 0;
};

/// "PATH: " for the last thing that begins in front of the offset. The tree is built for this
/// alone: paths are not worth their time while all goes well.
std::string PathAt(std::string_view bytes, std::int64_t offset) {
    TFormTree tree(bytes);
    TFormFileReader reader(bytes);
    tree.SetSource(reader);
    try {
        reader.ReadAll(tree);
    } catch (const Exception&) {
        tree.CloseAll(); // behind the offset, anything may be wrong
    }
    if (tree.Count() == 0) return {};
    TFormNodeIndex node = 0;
    for (TFormNodeIndex at = 0; at < tree.Count() && tree[at].Begin < offset; ++at)
        if (tree[at].Kind != fnElement) node = at;
    // A property's only value goes by its name.
    if (node > 0 && tree[node - 1].Kind == fnProperty) --node;
    return ShownFormPath(FormPathOf(tree, node)) + ": ";
}

/// How far the reader is, for a message.
std::string PlaceOf(const TFormFileReader& reader, std::string_view bytes) {
    const std::int64_t offset = reader.Offset();
    const std::string path = PathAt(bytes, offset);
    if (reader.Kind() != fkText) return Format("offset %d: %s", {offset, path});
    int line = 0;
    ForEachLine(bytes.substr(0, static_cast<std::size_t>(offset)), [&](auto) { ++line; });
    return Format("line %d: %s", {line, path});
}

void ReadAllTelling(TFormFileReader& reader, IFormSink& sink, const TFormProgress& progress) {
    if (!progress) return reader.ReadAll(sink);
    TProgressTeller teller(sink, reader, progress);
    reader.ReadAll(teller);
}

} // namespace

std::string ConvertForm(std::string_view bytes, TFormFileKind to, TFormLayout& layout,
                        const TFormProgress& progress) {
    std::string result;
    TFormFileReader reader(bytes, layout);
    // The layout of a text is known when it has been read.
    std::optional<TFormTree> tree;
    if (to == fkText && reader.Kind() == fkText) tree.emplace(bytes);
    if (tree) {
        ReadAllTelling(reader, *tree, progress);
        layout = reader.Layout();
    }
    // Growing would copy large files again and again. Rows of a binary block take 2.25 times its
    // size; what is not needed costs no memory as long as nobody writes there.
    const bool expands = to == fkText && reader.Kind() != fkText;
    result.reserve(expands ? bytes.size() / 4 * 9 : bytes.size());
    TFormFileWriter writer(to, layout, result);
    if (tree)
        tree->Replay(writer);
    else
        try {
            ReadAllTelling(reader, writer, progress);
            layout = reader.Layout();
        } catch (const EWriteError& error) { // what the other kind cannot hold
            const bool binary = reader.Kind() != fkText;
            throw EFormError(PlaceOf(reader, bytes)
                                 .append(error.Message())
                                 .append(binary ? HintFor(bytes) : std::string_view()));
        }
    return result;
}

// --- Comparing --------------------------------------------------------------------------------

namespace {

/// The place of a difference in bytes, or nothing.
std::string BinaryDifference(std::string_view former, std::string_view now) {
    const std::size_t size = std::min(former.size(), now.size());
    const std::size_t at = SameBytes(former, now);
    if (at == size && former.size() == now.size()) return {};
    if (at == size)
        return Format("offset %d: %d bytes instead of %d", {at, now.size(), former.size()});
    return Format("offset %d: %.2x becomes %.2x", {at, static_cast<unsigned char>(former[at]),
                                                   static_cast<unsigned char>(now[at])});
}

/// Takes a line off a text, without its end, which is CR LF, LF or CR.
std::string_view TakeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end);
    text.remove_prefix(text.starts_with("\r\n") ? 2 : std::min<std::size_t>(text.size(), 1));
    return line;
}

/// The part of a line from which on it differs from another one, and a little before.
std::string_view ShownFrom(std::string_view line, std::size_t difference) {
    constexpr std::size_t before = 30;
    constexpr std::size_t most = 70;
    if (Trim(line).empty()) return "a blank line";
    return Trim(line.substr(difference > before ? difference - before : 0).substr(0, most));
}

std::string LineDifference(std::string_view was, std::string_view is) {
    const std::size_t at = SameBytes(was, is);
    if (Trim(was) == Trim(is)) return Format("other blanks around %s", {ShownFrom(was, 0)});
    return Format("%s becomes %s", {ShownFrom(was, at), ShownFrom(is, at)});
}

std::string TextDifference(std::string_view former, std::string_view now) {
    if (former == now) return {}; // as most are
    for (int number = 1; !former.empty() || !now.empty(); ++number) {
        const bool ended = now.empty();
        const bool added = former.empty();
        const std::string_view was = TakeLine(former);
        const std::string_view is = TakeLine(now);
        if (added) return Format("line %d: is added: %s", {number, ShownFrom(is, 0)});
        if (ended) return Format("line %d: is lost: %s", {number, ShownFrom(was, 0)});
        if (was != is) return Format("line %d: %s", {number, LineDifference(was, is)});
    }
    return {};
}

} // namespace

std::string FormRoundTripDifference(std::string_view bytes, const TFormProgress& progress) {
    const TFormFileKind kind = FormFileKindOf(bytes);
    TFormLayout layout;
    const std::string other =
        ConvertForm(bytes, kind == fkText ? fkBinary : fkText, layout, progress);
    const std::string back = ConvertForm(other, kind, layout);
    return kind == fkText ? TextDifference(bytes, back) : BinaryDifference(bytes, back);
}

} // namespace tarn
