#pragma once

#include "rtl/SysUtils.h"
#include "rtl/TCollection.h"
#include "rtl/TStrings.h"
#include "rtl/TVariant.h"
#include "vcl/TComponent.h"

#include <cmath>
#include <random>
#include <string>
#include <string_view>

namespace tarn {

/// Visits what a settings object stores in its published properties, whatever its class: the
/// values of all kinds, sub-objects, string lists and plain collections.
class TRandomSettings {
public:
    explicit TRandomSettings(unsigned seed) : FRandom(seed) {}

    /// Whether texts are to be UTF-8: no form file in text holds other bytes.
    bool OnlyUtf8 = false;

    std::size_t Below(std::size_t count) { return FRandom() % count; }

    /// Puts random values into all properties but `key`. A setter may refuse its value.
    void Change(TPersistent& object, std::string_view key = {}) {
        ForEachStored(object, key, [&](const TPropInfo& prop) {
            if (prop.PropType->Kind == tkClass) return ChangeObject(object, prop);
            if (prop.Set) ChangeValue(object, prop);
        });
    }

    /// All values, one a line.
    static std::string Dump(TPersistent& object, const std::string& path = {}) {
        std::string text;
        ForEachStored(object, {}, [&](const TPropInfo& prop) {
            const std::string name = path + std::string(prop.Name);
            TObject* const value =
                prop.PropType->Kind == tkClass ? ObjectOf(object, prop) : nullptr;
            if (auto* const strings = ClassCast<TStrings>(value))
                text += name + " = " + strings->GetTextStr() + '\n';
            else if (auto* const list = ClassCast<TCollection>(value))
                for (int i = 0; i < list->Count(); ++i)
                    text += Dump(*list->Items(i), name + Format("[%d].", {i}));
            else if (auto* const part = ClassCast<TPersistent>(value))
                text += Dump(*part, name + '.');
            else if (prop.PropType->Kind != tkClass)
                text += name + " = " + ValueText(object, prop) + '\n';
        });
        return text;
    }

    /// Any bytes, many of them characters.
    std::string Text() {
        std::string text = Bytes();
        return OnlyUtf8 ? Utf16ToUtf8(Utf8ToUtf16(text)) : text;
    }

private:
    std::string Bytes() {
        static constexpr std::string_view pieces[] = {"a",
                                                      "Z9",
                                                      "'",
                                                      "\"",
                                                      "\r\n",
                                                      "\n",
                                                      "\t",
                                                      "\x7F",
                                                      "\xC3\xA4",
                                                      "\xE2\x82\xAC",
                                                      "\xF0\x9F\x8D\x8E",
                                                      "\xFF",
                                                      "\xC3",
                                                      "#"};
        std::string text;
        for (std::size_t i = Below(Below(8) == 0 ? 300 : 12); i > 0; --i)
            Below(4) == 0 ? text += static_cast<char>(Below(256))
                          : text += pieces[Below(std::size(pieces))];
        return text;
    }

    template <class F>
    static void ForEachStored(TPersistent& object, std::string_view key, const F& visit) {
        ForEachProp(object.ClassType(), [&](const TPropInfo& prop) {
            const bool current = object.ClassType().FindProp(prop.Name) == &prop;
            const bool value = prop.Set || prop.PropType->Kind == tkClass;
            if (current && value && prop.PropType->Kind != tkMethod && !SameText(prop.Name, key))
                visit(prop);
        });
    }

    static TObject* ObjectOf(TPersistent& object, const TPropInfo& prop) {
        TObject* value = nullptr;
        prop.Get(object, &value);
        return ClassCast<TComponent>(value) ? nullptr : value;
    }

    void ChangeObject(TPersistent& object, const TPropInfo& prop) {
        TObject* const value = ObjectOf(object, prop);
        if (auto* const strings = ClassCast<TStrings>(value)) {
            strings->Clear();
            for (std::size_t i = Below(4); i > 0; --i) strings->Add(Text());
        } else if (auto* const list = ClassCast<TCollection>(value)) {
            list->Clear();
            for (std::size_t i = Below(4); i > 0; --i) Change(*list->Add());
        } else if (auto* const part = ClassCast<TPersistent>(value)) {
            Change(*part);
        }
    }

    template <class T> static void Set(TPersistent& object, const TPropInfo& prop, const T& slot) {
        try {
            prop.Set(object, &slot);
        } catch (const Exception&) {
            return;
        }
    }

    void ChangeValue(TPersistent& object, const TPropInfo& prop) {
        const TTypeInfo& type = *prop.PropType;
        switch (type.Kind) {
        case tkSet: {
            const auto count = static_cast<std::size_t>(type.CompType->MaxValue + 1);
            return Set(object, prop, static_cast<std::int32_t>(Below(std::size_t{1} << count)));
        }
        case tkInt64:
            return Set(object, prop, static_cast<std::int64_t>(FRandom() >> Below(64)));
        case tkFloat:
            return Set(object, prop, Float());
        case tkString: // may be cut inside a character
            return Set(object, prop, OnlyUtf8 ? std::to_string(FRandom()) : Text());
        case tkLString:
            return Set(object, prop, Text());
        case tkWString:
            return Set(object, prop, Utf16ToUtf8(Utf8ToUtf16(Text())));
        case tkVariant:
            return Set(object, prop, Variant());
        default:
            return Set(object, prop, Ordinal(type));
        }
    }

    std::int32_t Ordinal(const TTypeInfo& type) {
        const std::size_t edge = Below(4);
        const std::int64_t value =
            edge == 0   ? type.MinValue
            : edge == 1 ? type.MaxValue
                        : type.MinValue + static_cast<std::int64_t>(Below(static_cast<std::size_t>(
                                              type.MaxValue - type.MinValue + 1)));
        return static_cast<std::int32_t>(value);
    }
    long double Float() {
        static constexpr long double special[] = {0.0L, -0.0L, 0.1L, 1e30L,
                                                  std::numeric_limits<long double>::infinity()};
        if (Below(4) == 0) return special[Below(std::size(special))];
        const long double number =
            std::ldexp(static_cast<long double>(FRandom()), static_cast<int>(Below(120)) - 120);
        return Below(2) == 0 ? number : -number;
    }
    TVariant Variant() {
        switch (Below(5)) {
        case 0:
            return {};
        case 1:
            return Below(2) == 0;
        case 2:
            return static_cast<std::int64_t>(FRandom());
        case 3:
            return Float();
        default:
            return Text();
        }
    }

    template <class T> static T SlotOf(const TPersistent& object, const TPropInfo& prop) {
        T slot{};
        prop.Get(object, &slot);
        return slot;
    }
    static std::string FloatText(long double value) {
        char text[64];
        return {text, static_cast<std::size_t>(std::snprintf(text, sizeof text, "%La", value))};
    }
    static std::string ValueText(const TPersistent& object, const TPropInfo& prop) {
        switch (prop.PropType->Kind) {
        case tkInt64:
            return std::to_string(SlotOf<std::int64_t>(object, prop));
        case tkFloat:
            return FloatText(SlotOf<long double>(object, prop));
        case tkString:
        case tkLString:
        case tkWString:
            return SlotOf<std::string>(object, prop);
        case tkVariant: {
            const auto value = SlotOf<TVariant>(object, prop);
            return std::to_string(value.Kind()) + ' ' +
                   (value.Kind() == vkFloat ? FloatText(value.ToFloat()) : value.ToString());
        }
        default:
            return std::to_string(SlotOf<std::int32_t>(object, prop));
        }
    }

    std::mt19937_64 FRandom;
};

} // namespace tarn
