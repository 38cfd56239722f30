#pragma once

#include "streaming/FormSink.h"
#include "streaming/TFormFilter.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// What a form file is made of: text, component streams, or component streams in resources. Several
/// forms may follow each other.
enum TFormFileKind : std::uint8_t { fkText, fkBinary, fkResource };

/// The kind by the first bytes; blanks and the mark of UTF-8 may stand before a text. Raises
/// EFormError for a file that begins like none.
TFormFileKind FormFileKindOf(std::string_view bytes);

/// Reads a form file of any kind, one form after the other. The bytes stay the caller's.
class TFormFileReader : public IFormSource {
public:
    /// `layout`: what a text does not say itself, that is the types of floats and of wide texts.
    explicit TFormFileReader(std::string_view bytes, const TFormLayout& layout = {});
    ~TFormFileReader() override;

    TFormFileKind Kind() const { return FKind; }
    bool AtEnd();
    /// Hands the next form to the sink. Raises the errors of the parsers, EFormError for a resource
    /// that holds more than a form.
    void Read(IFormSink& sink);
    void ReadAll(IFormSink& sink);

    std::int64_t Offset() const override;
    /// Recognised from what has been read. Of a binary: the types of its floats and wide texts.
    TFormLayout Layout() const;
    /// The offsets of the 4 bytes with the size of each resource that has been read.
    const std::vector<std::size_t>& ResourceSizes() const { return FResourceSizes; }

private:
    struct TParsers;
    void ReadResource(IFormSink& sink);

    std::string_view FBytes;
    TFormFileKind FKind;
    TFormLayout FLayout;
    std::unique_ptr<TParsers> FParsers;
    std::vector<std::size_t> FResourceSizes;
};

/// Writes forms, one after the other, as a file of any kind.
class TFormFileWriter : public TFormFilter {
public:
    /// Behind what the target holds, which is whole when this object is gone.
    TFormFileWriter(TFormFileKind kind, const TFormLayout& layout, std::string& target);
    ~TFormFileWriter() override;

    void BeginObject(const TFormHeader& header) override;
    void EndObject() override;

private:
    TFormFileKind FKind;
    TFormLayout FLayout;
    std::string& FTarget;
    std::unique_ptr<IFormSink> FWriter;
    int FDepth = 0;
    std::size_t FSizeAt = 0; ///< of the resource that is being written
};

/// Told now and then how many bytes of a form file have been read.
using TFormProgress = std::function<void(std::size_t done)>;

/// A form file as another kind.
/// \param layout what the input does not say itself; then what has been recognised in it, for the
/// way back
std::string ConvertForm(std::string_view bytes, TFormFileKind to, TFormLayout& layout,
                        const TFormProgress& progress = {});

/// Where a form file differs from itself after the way to another kind and back: "line 12: ..." or
/// "offset 345: ..."; empty when it does not. How lines end does not count.
std::string FormRoundTripDifference(std::string_view bytes, const TFormProgress& progress = {});

} // namespace tarn
