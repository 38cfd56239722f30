#pragma once

#include "streaming/FormSink.h"

namespace tarn {

/// Hands everything on to another sink: for sinks that look at, or change, some of it.
class TFormFilter : public IFormSink {
public:
    explicit TFormFilter(IFormSink& target) : FTarget(&target) {}

    void BeginObject(const TFormHeader& header) override { FTarget->BeginObject(header); }
    void BeginChildren() override { FTarget->BeginChildren(); }
    void EndObject() override { FTarget->EndObject(); }
    void Property(std::string_view name) override { FTarget->Property(name); }
    void Integer(TValueType type, std::int64_t value) override { FTarget->Integer(type, value); }
    void Float(TValueType type, long double value) override { FTarget->Float(type, value); }
    void String(TValueType type, std::string_view text) override { FTarget->String(type, text); }
    void Ident(TValueType type, std::string_view name) override { FTarget->Ident(type, name); }
    void Binary(std::string_view bytes) override { FTarget->Binary(bytes); }
    void BeginSet() override { FTarget->BeginSet(); }
    void SetElement(std::string_view name) override { FTarget->SetElement(name); }
    void EndSet() override { FTarget->EndSet(); }
    void BeginList() override { FTarget->BeginList(); }
    void EndList() override { FTarget->EndList(); }
    void BeginCollection() override { FTarget->BeginCollection(); }
    void BeginItem(std::optional<std::int64_t> order) override { FTarget->BeginItem(order); }
    void EndItem() override { FTarget->EndItem(); }
    void EndCollection() override { FTarget->EndCollection(); }

protected:
    TFormFilter() = default;
    void SetTarget(IFormSink& target) { FTarget = &target; }

private:
    IFormSink* FTarget = nullptr;
};

} // namespace tarn
