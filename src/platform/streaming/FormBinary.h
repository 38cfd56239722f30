#pragma once

#include "streaming/FormSink.h"
#include "streaming/TReader.h"
#include "streaming/TWriter.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// Hands one object of a component stream, with its signature, to a sink. Raises EReaderError.
void ReadFormBinary(TReader& reader, IFormSink& sink);

/// The binary form as a source: objects, each with its signature, one after another.
class TFormBinaryReader : public IFormSource {
public:
    /// The bytes stay the caller's.
    explicit TFormBinaryReader(std::string_view bytes) : FReader(bytes) {}

    bool AtEnd() { return FReader.BytesLeft() == 0; }
    /// Reads one object and leaves the offset behind it. Raises EReaderError.
    void Parse(IFormSink& sink) { ReadFormBinary(FReader, sink); }
    std::int64_t Offset() const override { return FReader.Position(); }

private:
    TReader FReader;
};

/// Writes the binary form. Values keep the types that they come with, so that a form that was read
/// comes out byte for byte (but the payload of a NaN). What the binary form cannot hold raises
/// EWriteError: empty names, names above 255 bytes, Null in a list.
class TFormBinaryWriter : public IFormSink {
public:
    /// Onto a writer that stays the caller's, who flushes it.
    explicit TFormBinaryWriter(TWriter& writer) : FWriter(&writer) {}
    /// Onto a stream; whole when the outermost object has ended.
    explicit TFormBinaryWriter(TStream& stream);
    /// Behind what the string holds; whole when the outermost object has ended.
    explicit TFormBinaryWriter(std::string& target);
    ~TFormBinaryWriter() override;

    void BeginObject(const TFormHeader& header) override;
    void BeginChildren() override;
    void EndObject() override;
    void Property(std::string_view name) override;
    void Integer(TValueType type, std::int64_t value) override;
    void Float(TValueType type, long double value) override;
    void String(TValueType type, std::string_view text) override;
    void Ident(TValueType type, std::string_view name) override;
    void Binary(std::string_view bytes) override;
    void BeginSet() override;
    void SetElement(std::string_view name) override;
    void EndSet() override;
    void BeginList() override;
    void EndList() override;
    void BeginCollection() override;
    void BeginItem(std::optional<std::int64_t> order) override;
    void EndItem() override;
    void EndCollection() override;

private:
    std::unique_ptr<TStream> FOwnStream;
    std::unique_ptr<TWriter> FOwnWriter;
    TWriter* FWriter;
    int FDepth = 0;
    bool FNamed = false; ///< whether the next value is a property's, not one of a list
};

} // namespace tarn
