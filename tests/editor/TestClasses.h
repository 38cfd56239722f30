#pragma once

#include "TSpcCollection.h"
#include "TSpcObject.h"
#include "rtl/TypInfo.h"

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <utility>

// Classes for the tests of the settings editor.

namespace tarn {

enum TDay : std::uint8_t { dyMonday, dyTuesday, dyWednesday };
inline constexpr std::string_view DayNames[] = {"dyMonday", "dyTuesday", "dyWednesday"};
template <> inline constexpr TTypeInfo TypeInfoOf<TDay> = EnumType("TDay", DayNames);

inline constexpr TTypeInfo DaysType = {"TDays", tkSet, 0, 0, {}, &TypeInfoOf<TDay>};

/// An enumeration that begins at 3.
enum TLate : std::uint8_t { laThird = 3, laFourth };
inline constexpr std::string_view LateNames[] = {"laThird", "laFourth"};
template <> inline constexpr TTypeInfo TypeInfoOf<TLate> = EnumType("TLate", LateNames, 3);

/// An enumeration of 33 values, one more than a set holds.
enum TMany : std::uint8_t { maFirst, maLast = 32 };
inline constexpr std::string_view ManyNames[] = {
    "e0",  "e1",  "e2",  "e3",  "e4",  "e5",  "e6",  "e7",  "e8",  "e9",  "e10",
    "e11", "e12", "e13", "e14", "e15", "e16", "e17", "e18", "e19", "e20", "e21",
    "e22", "e23", "e24", "e25", "e26", "e27", "e28", "e29", "e30", "e31", "e32"};
template <> inline constexpr TTypeInfo TypeInfoOf<TMany> = EnumType("TMany", ManyNames);

/// A property of each built-in kind.
class TPlain : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    int Number = 7;
    char Char = 'x';
    double Float = 0.5;
    std::string Text = "text";
    TDay Day = dyTuesday;
    bool Flag = true;
    TSet<TDay> Days = {dyMonday, dyWednesday};
};
inline constexpr TPropInfo PlainProps[] = {
    Published<&TPlain::Number>("Number"),
    Published<&TPlain::Char>("Char"),
    Published<&TPlain::Float>("Float"),
    Published<&TPlain::Text>("Text"),
    Published<&TPlain::Day>("Day"),
    Published<&TPlain::Flag>("Flag"),
    Published<&TPlain::Days>("Days", {.Type = &DaysType}),
};
inline constinit const TClassRecord TPlain::ClassRecord{"TPlain", &TPersistent::ClassRecord,
                                                        CreateObject<TPlain>, PlainProps};

/// Types whose values lie at the edges of what a control shows.
class TEdges : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    std::uint8_t Byte = 0;
    std::uint32_t Cardinal = 0;
    std::int64_t Int64 = 0;
    float Single = 0;
    char Char = 0;
    TShortString<4> Short;
    std::u16string Wide;
    TLate Late = laThird;
    TSet<TLate> Lates;
    TSet<TMany> Many;
    char16_t Unit = 'x';
    TNotifyEvent OnEvent;
    const std::string& Fixed() const { return FFixed; }

private:
    std::string FFixed = "fixed";
};
inline constexpr TPropInfo EdgesProps[] = {
    Published<&TEdges::Byte>("Byte"),   Published<&TEdges::Cardinal>("Cardinal"),
    Published<&TEdges::Int64>("Int64"), Published<&TEdges::Single>("Single"),
    Published<&TEdges::Char>("Char"),   Published<&TEdges::Short>("Short"),
    Published<&TEdges::Wide>("Wide"),   Published<&TEdges::Late>("Late"),
    Published<&TEdges::Lates>("Lates"), Published<&TEdges::Many>("Many"),
    Published<&TEdges::Unit>("Unit"),   Published<&TEdges::OnEvent>("OnEvent"),
    Published<&TEdges::Fixed>("Fixed"),
};
inline constinit const TClassRecord TEdges::ClassRecord{"TEdges", &TPersistent::ClassRecord,
                                                        CreateObject<TEdges>, EdgesProps};

/// An item that says its name and what is to be done to it.
class TPage : public TSpcItem {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    std::string GetNodeName() override { return Name; }
    bool NeedsTranslate() override { return true; }
    bool NeedsIterate() override { return Numbered; }
    void Assign(const TPersistent* source) override {
        const auto& page = dynamic_cast<const TPage&>(*source);
        std::tie(Name, Numbered, NodeName) = std::tie(page.Name, page.Numbered, page.NodeName);
    }

    std::string Name;
    bool Numbered = false;
    std::string NodeName;
};
inline constexpr TPropInfo PageProps[] = {
    Published<&TPage::Name>("Name"),
    Published<&TPage::Numbered>("Numbered"),
    Published<&TPage::NodeName>("nodename"),
};
inline constinit const TClassRecord TPage::ClassRecord{"TPage", &TSpcItem::ClassRecord,
                                                       CreateObject<TPage>, PageProps};

class TPages : public TSpcCollection {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    TPages() : TSpcCollection(TClassRef<TCollectionItem>::Of<TPage>()) {}
    std::string GetUpdateName() const override { return "Name"; }
    TPage* Add(std::string_view name) { return static_cast<TPage*>(AddItemID(name)); }
    TPage* Page(int index) const { return static_cast<TPage*>(Items(index)); }
};
inline constinit const TClassRecord TPages::ClassRecord{"TPages", &TSpcCollection::ClassRecord,
                                                        CreateObject<TPages>};

/// An item that wraps an object of somebody else.
class TSlot : public TWrapperItem {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
};
inline constinit const TClassRecord TSlot::ClassRecord{"TSlot", &TWrapperItem::ClassRecord,
                                                       CreateObject<TSlot>};

class TSlots : public TSpcCollection {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    TSlots() : TSpcCollection(TClassRef<TCollectionItem>::Of<TSlot>()) {}
    std::string GetUpdateName() const override { return "AObjectID"; }
    int Limit = 3;
};
inline constexpr TPropInfo SlotsProps[] = {Published<&TSlots::Limit>("Limit")};
inline constinit const TClassRecord TSlots::ClassRecord{"TSlots", &TSpcCollection::ClassRecord,
                                                        CreateObject<TSlots>, SlotsProps};

class TPart : public TSpcObject {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    int Level = 1;
    double Ratio = 1.5;
    /// An object that is another's, perhaps one above.
    TPersistent* Link() const { return FLink.Get(); }
    void SetLink(TPersistent* value) { FLink = value; }
    void Assign(const TPersistent* source) override {
        const auto& part = dynamic_cast<const TPart&>(*source);
        std::tie(Level, Ratio) = std::tie(part.Level, part.Ratio);
    }

private:
    TWeak<TPersistent> FLink;
};
inline constexpr TPropInfo PartProps[] = {
    Published<&TPart::Level>("Level"),
    Published<&TPart::Ratio>("Ratio"),
    Published<&TPart::Link>("Link"),
};
inline constinit const TClassRecord TPart::ClassRecord{"TPart", &TSpcObject::ClassRecord,
                                                       CreateObject<TPart>, PartProps};

/// A small settings tree.
class TDemo : public TSpcObject {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    std::string Title = "title";
    int Number = 7;
    TPart* Part() const { return FPart.get(); }
    TPages* Pages() const { return FPages.get(); }
    TSlots* Slots() const { return FSlots.get(); }
    void Assign(const TPersistent* source) override {
        const auto& demo = dynamic_cast<const TDemo&>(*source);
        std::tie(Title, Number) = std::tie(demo.Title, demo.Number);
        FPart->Assign(demo.Part());
        FPages->Assign(demo.Pages());
    }

private:
    std::unique_ptr<TPart> FPart = std::make_unique<TPart>();
    std::unique_ptr<TPages> FPages = std::make_unique<TPages>();
    std::unique_ptr<TSlots> FSlots = std::make_unique<TSlots>();
};
inline constexpr TPropInfo DemoProps[] = {
    Published<&TDemo::Title>("Title"),   Published<&TDemo::Part>("Part"),
    Published<&TDemo::Pages>("Pages"),   Published<&TDemo::Slots>("Slots"),
    Published<&TDemo::Number>("Number"),
};
inline constinit const TClassRecord TDemo::ClassRecord{"TDemo", &TSpcObject::ClassRecord,
                                                       CreateObject<TDemo>, DemoProps};

} // namespace tarn
