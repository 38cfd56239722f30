#include "streaming/FormBinary.h"

#include "rtl/SysUtils.h"

namespace tarn {

// --- Reading ----------------------------------------------------------------------------------

namespace {

void CopyProperties(TReader& reader, IFormSink& sink);

void CopySet(TReader& reader, IFormSink& sink) {
    sink.BeginSet();
    for (;;) {
        const std::string_view name = reader.ReadShortText();
        if (name.empty()) break;
        sink.SetElement(name);
    }
    sink.EndSet();
}

void CopyCollection(TReader& reader, IFormSink& sink) {
    const TReader::TNesting nesting(reader);
    sink.BeginCollection();
    for (int index = 0; !reader.EndOfList(); ++index) {
        const TReader::TPlace place(reader, index);
        std::optional<std::int64_t> order;
        if (reader.NextValue() != vaList) order = reader.ReadInt64();
        reader.ReadListBegin();
        sink.BeginItem(order);
        CopyProperties(reader, sink);
        sink.EndItem();
    }
    reader.ReadListEnd();
    sink.EndCollection();
}

void CopyValue(TReader& reader, IFormSink& sink);

void CopyList(TReader& reader, IFormSink& sink) {
    const TReader::TNesting nesting(reader);
    sink.BeginList();
    for (int index = 0; !reader.EndOfList(); ++index) {
        const TReader::TPlace place(reader, index);
        CopyValue(reader, sink);
    }
    reader.ReadListEnd();
    sink.EndList();
}

void CopyValue(TReader& reader, IFormSink& sink) {
    const TValueType type = reader.ReadValue();
    switch (type) {
    case vaInt8:
    case vaInt16:
    case vaInt32:
    case vaInt64:
    case vaCurrency:
        return sink.Integer(type, reader.ReadIntegerOf(type));
    case vaExtended:
    case vaSingle:
    case vaDouble:
    case vaDate:
        return sink.Float(type, reader.ReadFloatOf(type));
    case vaString:
    case vaLString:
    case vaWString:
    case vaUTF8String:
        return sink.String(type, reader.ReadTextOf(type));
    case vaIdent:
        return sink.Ident(type, reader.ReadShortText());
    case vaNull:
    case vaNil:
    case vaFalse:
    case vaTrue:
        return sink.Ident(type, NameOfValue(type));
    case vaBinary:
        return sink.Binary(reader.ReadBlock());
    case vaSet:
        return CopySet(reader, sink);
    case vaList:
        return CopyList(reader, sink);
    case vaCollection:
        return CopyCollection(reader, sink);
    }
}

void CopyProperties(TReader& reader, IFormSink& sink) {
    for (;;) {
        const std::string_view name = reader.ReadShortText();
        if (name.empty()) return;
        const TReader::TPlace place(reader, name);
        sink.Property(name);
        CopyValue(reader, sink);
    }
}

void CopyObject(TReader& reader, IFormSink& sink) {
    const TReader::TNesting nesting(reader);
    TFormHeader header;
    reader.ReadPrefix(header.Flags, header.ChildPos);
    // The second text may move the first out of the way.
    const std::string className = reader.ReadStr();
    if (className.empty()) reader.FailAt(reader.Position() - 1, "an object without a class");
    header.ClassName = className;
    header.ObjectName = reader.ReadShortText();
    const TReader::TPlace place(reader, header.ObjectName.empty() ? className : header.ObjectName);
    sink.BeginObject(header);
    CopyProperties(reader, sink);
    sink.BeginChildren();
    while (!reader.EndOfList()) CopyObject(reader, sink);
    reader.ReadListEnd();
    sink.EndObject();
}

} // namespace

void ReadFormBinary(TReader& reader, IFormSink& sink) {
    reader.ReadSignature();
    CopyObject(reader, sink);
}

// --- Writing ----------------------------------------------------------------------------------

namespace {

/// A stream that appends to a string of somebody else, which is its whole content.
class TAppendStream final : public TStream {
public:
    explicit TAppendStream(std::string& target) : FTarget(target) {}

    std::int64_t Read(void*, std::int64_t) override { return 0; }
    std::int64_t Write(const void* buffer, std::int64_t count) override {
        FTarget.append(static_cast<const char*>(buffer), static_cast<std::size_t>(count));
        return count;
    }
    std::int64_t Seek(std::int64_t, TSeekOrigin) override {
        return static_cast<std::int64_t>(FTarget.size());
    }

private:
    std::string& FTarget;
};

constexpr int WriteBufferSize = 16384;

/// An empty name would end the list that it stands in.
void RequireName(std::string_view name, std::string_view what) {
    if (name.empty()) throw EWriteError(Format("%s without a name", {what}));
}

} // namespace

TFormBinaryWriter::TFormBinaryWriter(TStream& stream)
    : FOwnWriter(std::make_unique<TWriter>(stream, WriteBufferSize)), FWriter(FOwnWriter.get()) {}

TFormBinaryWriter::TFormBinaryWriter(std::string& target)
    : FOwnStream(std::make_unique<TAppendStream>(target)),
      FOwnWriter(std::make_unique<TWriter>(*FOwnStream, WriteBufferSize)),
      FWriter(FOwnWriter.get()) {}

TFormBinaryWriter::~TFormBinaryWriter() = default;

void TFormBinaryWriter::BeginObject(const TFormHeader& header) {
    if (FDepth++ == 0) FWriter->WriteSignature();
    RequireName(header.ClassName, "an object's class");
    FWriter->WritePrefix(header.Flags, header.ChildPos, header.ClassName);
    FWriter->WriteStr(header.ClassName);
    FWriter->WriteStr(header.ObjectName);
}

void TFormBinaryWriter::BeginChildren() {
    FWriter->WriteListEnd();
}

void TFormBinaryWriter::EndObject() {
    FWriter->WriteListEnd();
    if (--FDepth == 0 && FOwnWriter) FWriter->FlushBuffer();
}

void TFormBinaryWriter::Property(std::string_view name) {
    RequireName(name, "a property");
    FWriter->WriteStr(name);
    FNamed = true;
}

void TFormBinaryWriter::Integer(TValueType type, std::int64_t value) {
    FWriter->WriteIntegerOf(type, value);
}

void TFormBinaryWriter::Float(TValueType type, long double value) {
    FWriter->WriteFloatOf(type, value);
}

void TFormBinaryWriter::String(TValueType type, std::string_view text) {
    FWriter->WriteTextOf(type, text);
}

void TFormBinaryWriter::Ident(TValueType type, std::string_view name) {
    if (type == vaNull && !FNamed) throw EWriteError("Null in a list, which it would end");
    FWriter->WriteValue(type);
    if (type == vaIdent) FWriter->WriteStr(name);
}

void TFormBinaryWriter::Binary(std::string_view bytes) {
    FWriter->WriteBinary(bytes);
}

void TFormBinaryWriter::BeginSet() {
    FWriter->WriteValue(vaSet);
}

void TFormBinaryWriter::SetElement(std::string_view name) {
    RequireName(name, "an element of a set");
    FWriter->WriteStr(name);
}

void TFormBinaryWriter::EndSet() {
    FWriter->WriteStr({});
}

void TFormBinaryWriter::BeginList() {
    FWriter->WriteListBegin();
    FNamed = false;
}

void TFormBinaryWriter::EndList() {
    FWriter->WriteListEnd();
}

void TFormBinaryWriter::BeginCollection() {
    FWriter->WriteValue(vaCollection);
}

void TFormBinaryWriter::BeginItem(std::optional<std::int64_t> order) {
    if (order) FWriter->WriteInteger(*order);
    FWriter->WriteListBegin();
}

void TFormBinaryWriter::EndItem() {
    FWriter->WriteListEnd();
}

void TFormBinaryWriter::EndCollection() {
    FWriter->WriteListEnd();
    FNamed = false;
}

} // namespace tarn
