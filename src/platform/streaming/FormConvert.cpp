#include "streaming/FormConvert.h"

#include "rtl/SameBytes.h"
#include "streaming/FormBinary.h"
#include "streaming/FormResource.h"
#include "streaming/TFormPath.h"
#include "streaming/TFormTextParser.h"
#include "streaming/TFormTextPrinter.h"
#include "streaming/TFormTree.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace tarn {
namespace {

constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view FormKeywords[] = {"object", "inherited", "inline"};
constexpr std::string_view Blanks = " \t\r\n";

bool BeginsLikeText(std::string_view bytes) {
    if (bytes.starts_with(Utf8Mark)) bytes.remove_prefix(Utf8Mark.size());
    bytes.remove_prefix(std::min(bytes.find_first_not_of(Blanks), bytes.size()));
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
    if (FKind == fkBinary) return ReadFormBinary(*FParsers->Binary, watcher);
    ReadResource(watcher);
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

/// How far the reader is, for a message.
std::string PlaceOf(const TFormFileReader& reader, std::string_view bytes) {
    const std::int64_t offset = reader.Offset();
    if (reader.Kind() != fkText) return Format("offset %d", {offset});
    return Format("line %d", {1 + std::count(bytes.begin(), bytes.begin() + offset, '\n')});
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
            throw EFormError(PlaceOf(reader, bytes) + ": " + error.what());
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

/// Takes a line off a text, without its end.
std::string_view TakeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

/// The part of a line from which on it differs from another one, and a little before.
std::string_view ShownFrom(std::string_view line, std::size_t difference) {
    constexpr std::size_t before = 30;
    constexpr std::size_t most = 70;
    return Trim(line.substr(difference > before ? difference - before : 0).substr(0, most));
}

std::string LineDifference(std::string_view was, std::string_view is) {
    const std::size_t at = SameBytes(was, is);
    if (Trim(was) == Trim(is)) return Format("other blanks around %s", {ShownFrom(was, 0)});
    return Format("%s becomes %s", {ShownFrom(was, at), ShownFrom(is, at)});
}

std::string TextDifference(std::string_view former, std::string_view now) {
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
