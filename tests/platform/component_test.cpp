#include "rtl/SysUtils.h"
#include "vcl/TComponent.h"
#include "vcl/TTabControl.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace tarn {
namespace {

/// A component that writes its name down when it goes.
class TNamedPart : public TComponent {
public:
    TNamedPart(TComponent* owner, std::string_view name, std::string* log = nullptr)
        : TComponent(owner), FLog(log) {
        SetName(name);
    }
    ~TNamedPart() override {
        if (FLog) *FLog += Name();
    }

private:
    std::string* FLog;
};

template <class F> std::string MessageOf(F&& call) {
    try {
        call();
    } catch (const EComponentError& error) {
        return std::string(error.Message());
    }
    return "";
}

TEST(Component, NamesAreIdentifiers) {
    TComponent component;
    for (const std::string_view good : {"a", "_", "Edit1", "_9", "aB_c"}) {
        component.SetName(good);
        EXPECT_EQ(component.Name(), good);
    }
    for (const std::string_view bad : {"1a", "a b", "a.b", "-", " a", "\u00E4", "a\u00E4"}) {
        EXPECT_EQ(MessageOf([&] { component.SetName(bad); }),
                  "'" + std::string(bad) + "' is not a valid component name");
        EXPECT_EQ(component.Name(), "aB_c");
    }
    component.SetName("");
    EXPECT_EQ(component.Name(), "");
}

TEST(Component, NamesStandOncePerOwner) {
    TComponent owner;
    TNamedPart a(&owner, "Edit"), b(&owner, ""), c(&owner, "");
    EXPECT_EQ(MessageOf([&] { b.SetName("eDIT"); }), "a component named eDIT already exists");
    EXPECT_EQ(b.Name(), "");
    a.SetName("EDIT"); // its own name in another case
    EXPECT_EQ(owner.FindComponent("edit"), &a);
    EXPECT_EQ(owner.FindComponent("Edi"), nullptr);
    EXPECT_EQ(owner.FindComponent(""), nullptr);

    TNamedPart stranger(nullptr, "Edit");
    EXPECT_EQ(MessageOf([&] { owner.InsertComponent(&stranger); }),
              "a component named Edit already exists");
    EXPECT_EQ(stranger.Owner(), nullptr);
    EXPECT_EQ(owner.ComponentCount(), 3);
}

TEST(Component, IsFoundAmongManyWhateverCameAndWent) {
    std::mt19937 random(3);
    TComponent owner;
    std::map<std::string, TComponent*> named;
    std::vector<TComponent*> parts;
    // Names are few, so that they are given and taken again and again; most do not exist.
    const auto anyName = [&] { return "Part" + std::to_string(random() % 200); };
    for (int step = 0; step < 5000; ++step) {
        const std::string name = anyName();
        if (parts.size() < 90 && random() % 2 == 0) parts.push_back(new TComponent(&owner));
        const std::size_t at = random() % std::max<std::size_t>(parts.size(), 1);
        if (parts.empty()) continue;
        TComponent* const part = parts[at];
        if (random() % 3 == 0) {
            named.erase(part->Name());
            parts.erase(parts.begin() + static_cast<std::ptrdiff_t>(at));
            delete part;
        } else if (named.count(name) == 0) {
            named.erase(part->Name());
            part->SetName(name);
            named[name] = part;
        }
        for (const std::string& asked : {name, anyName()}) {
            const auto known = named.find(asked);
            ASSERT_EQ(owner.FindComponent(UpperCase(asked)),
                      known == named.end() ? nullptr : known->second);
        }
    }
}

TEST(Component, OwnerFreesNewestFirst) {
    std::string log;
    {
        TComponent owner;
        new TNamedPart(&owner, "a", &log);
        auto* const b = new TNamedPart(&owner, "b", &log);
        new TNamedPart(b, "x", &log);
        new TNamedPart(b, "y", &log);
        auto* const c = new TNamedPart(&owner, "c", &log);
        new TNamedPart(&owner, "d", &log);
        delete c;
        EXPECT_EQ(log, "c");
        EXPECT_EQ(owner.ComponentCount(), 3);
        EXPECT_EQ(owner.Components(2)->Name(), "d");
        EXPECT_THROW(owner.Components(3), EListError);
        EXPECT_THROW(owner.Components(-1), EListError);
    }
    EXPECT_EQ(log, "cdbyxa"); // a part writes before it frees what it owns
}

TEST(Component, ChangesItsOwner) {
    std::string log;
    auto first = std::make_unique<TComponent>();
    auto second = std::make_unique<TComponent>();
    auto* const part = new TNamedPart(first.get(), "p", &log);
    second->InsertComponent(part);
    EXPECT_EQ(part->Owner(), second.get());
    EXPECT_EQ(first->ComponentCount(), 0);
    first.reset();
    EXPECT_EQ(log, "");
    second->RemoveComponent(part);
    second->RemoveComponent(part);
    EXPECT_EQ(part->Owner(), nullptr);
    second.reset();
    EXPECT_EQ(log, "");
    delete part;
}

TEST(Control, ParentsAndChildren) {
    TControl a, b;
    auto c = std::make_unique<TControl>();
    b.SetParent(&a);
    c->SetParent(&b);
    EXPECT_THROW(a.SetParent(c.get()), EInvalidOperation);
    EXPECT_THROW(a.SetParent(&a), EInvalidOperation);
    EXPECT_EQ(a.Parent(), nullptr);
    EXPECT_EQ(b.Controls(0), c.get());
    EXPECT_THROW(b.Controls(1), EListError);
    c->SetParent(&a);
    EXPECT_EQ(a.ControlCount(), 2);
    EXPECT_EQ(b.ControlCount(), 0);
    c.reset();
    EXPECT_EQ(a.ControlCount(), 1);
    {
        TControl parent;
        b.SetParent(&parent);
    }
    EXPECT_EQ(b.Parent(), nullptr);
}

TEST(TabControl, FollowsItsTabs) {
    TTabControl tabs;
    int changes = 0;
    auto count = [&](TObject*) { ++changes; };
    tabs.OnChange = TNotifyEvent::Calling(count);
    EXPECT_EQ(tabs.TabIndex(), -1);
    tabs.Tabs().SetTextStr("a\nb\nc");
    tabs.SetTabIndex(2);
    EXPECT_EQ(tabs.TabIndex(), 2);
    tabs.Tabs().Delete(0);
    EXPECT_EQ(tabs.TabIndex(), -1);
    for (const int outside : {2, -5}) {
        tabs.SetTabIndex(1);
        tabs.SetTabIndex(outside);
        EXPECT_EQ(tabs.TabIndex(), -1);
    }
    EXPECT_EQ(changes, 0);
}

} // namespace
} // namespace tarn
