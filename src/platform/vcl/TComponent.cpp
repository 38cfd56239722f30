#include "vcl/TComponent.h"

#include "rtl/SysUtils.h"
#include "streaming/TReader.h"
#include "streaming/TWriter.h"

#include <algorithm>
#include <utility>

namespace tarn {
namespace {

/// A stream has the name in an object's head, not among the properties.
bool NeverStored(const TObject&) {
    return false;
}

constexpr TPropInfo ComponentProps[] = {
    Published<&TComponent::Name, &TComponent::SetName>("Name", {.IsStored = NeverStored}),
};

/// Searching this many names is faster than keeping them in a table.
constexpr std::size_t FewComponents = 16;

} // namespace

constinit const TClassRecord TComponent::ClassRecord{"TComponent", &TPersistent::ClassRecord,
                                                     CreateObject<TComponent>, ComponentProps};

/// The named components of an owner by their names, without case: an open table, at most half full,
/// where a component stands at the first free place from that of its hash on. It is one flat block
/// because with very many components each step to another one costs more than all comparing.
class TComponent::TNameIndex {
public:
    explicit TNameIndex(const std::vector<TComponent*>& components) {
        for (TComponent* component : components) Add(component);
    }

    void Add(TComponent* component) {
        if (component->FName.empty()) return;
        if (2 * ++FCount > FPlaces.size()) Grow();
        Put({HashOf(component->FName), component});
    }

    void Remove(TComponent* component) {
        std::size_t at = Home(HashOf(component->FName));
        while (FPlaces[at].Component && FPlaces[at].Component != component) at = Next(at);
        if (!FPlaces[at].Component) return;
        --FCount;
        // What stands behind moves up where it would not be found any more.
        for (std::size_t from = Next(at); FPlaces[from].Component; from = Next(from)) {
            if (Distance(Home(FPlaces[from].Hash), from) < Distance(at, from)) continue;
            FPlaces[at] = FPlaces[from];
            at = from;
        }
        FPlaces[at] = {};
    }

    TComponent* Find(std::string_view name) const {
        const std::size_t hash = HashOf(name);
        for (std::size_t at = Home(hash); FPlaces[at].Component; at = Next(at))
            if (FPlaces[at].Hash == hash && SameText(FPlaces[at].Component->FName, name))
                return FPlaces[at].Component;
        return nullptr;
    }

private:
    struct TPlace {
        std::size_t Hash = 0;
        TComponent* Component = nullptr; ///< null: free
    };

    static std::size_t HashOf(std::string_view name) {
        std::size_t hash = 14695981039346656037u; // FNV-1a
        for (const char c : name) {
            const bool upper = c >= 'A' && c <= 'Z';
            hash = (hash ^ static_cast<unsigned char>(upper ? c | 0x20 : c)) * 1099511628211u;
        }
        return hash;
    }
    std::size_t Mask() const { return FPlaces.size() - 1; }
    std::size_t Home(std::size_t hash) const { return hash & Mask(); }
    std::size_t Next(std::size_t at) const { return (at + 1) & Mask(); }
    std::size_t Distance(std::size_t from, std::size_t to) const { return (to - from) & Mask(); }

    void Put(const TPlace& place) {
        std::size_t at = Home(place.Hash);
        while (FPlaces[at].Component) at = Next(at);
        FPlaces[at] = place;
    }
    void Grow() {
        const std::vector<TPlace> former =
            std::exchange(FPlaces, std::vector<TPlace>(FPlaces.size() * 2));
        for (const TPlace& place : former)
            if (place.Component) Put(place);
    }

    std::vector<TPlace> FPlaces = std::vector<TPlace>(4 * FewComponents); ///< a power of two
    std::size_t FCount = 0;
};

TComponent::TComponent(TComponent* owner) {
    if (owner) owner->InsertComponent(this);
}

TComponent::~TComponent() {
    SetFlag(csDestroying, true);
    while (!FComponents.empty()) {
        TComponent* const last = FComponents.back();
        RemoveComponent(last);
        delete last;
    }
    if (FOwner) FOwner->RemoveComponent(this);
}

// --- Names and owners -------------------------------------------------------------------------

void TComponent::SetName(std::string_view name) {
    if (name == FName) return;
    if (!name.empty() && !IsValidIdent(name))
        throw EComponentError(Format("'%s' is not a valid component name", {name}));
    if (FOwner) FOwner->ValidateRename(this, name);
    TNameIndex* const index = FOwner ? FOwner->FNameIndex.get() : nullptr;
    if (index) index->Remove(this);
    FName = name;
    if (index) index->Add(this);
}

TComponent* TComponent::Components(int index) const {
    if (index < 0 || index >= ComponentCount()) throw EListError(Format(SListIndexError, {index}));
    return FComponents[static_cast<std::size_t>(index)];
}

TComponent* TComponent::FindComponent(std::string_view name) const {
    if (name.empty()) return nullptr;
    if (FNameIndex) return FNameIndex->Find(name);
    for (TComponent* component : FComponents)
        if (SameText(component->FName, name)) return component;
    return nullptr;
}

void TComponent::InsertComponent(TComponent* component) {
    ValidateRename(component, component->FName);
    if (component->FOwner) component->FOwner->RemoveComponent(component);
    FComponents.push_back(component);
    component->FOwner = this;
    if (FNameIndex)
        FNameIndex->Add(component);
    else if (FComponents.size() > FewComponents)
        FNameIndex = std::make_unique<TNameIndex>(FComponents);
}

void TComponent::RemoveComponent(TComponent* component) {
    // The newest goes first most of the time.
    const auto found = std::find(FComponents.rbegin(), FComponents.rend(), component);
    if (found == FComponents.rend()) return;
    if (FNameIndex) FNameIndex->Remove(component);
    FComponents.erase(std::next(found).base());
    component->FOwner = nullptr;
}

void TComponent::ValidateRename(const TComponent* component, std::string_view name) const {
    const TComponent* const same = FindComponent(name);
    if (same && same != component)
        throw EComponentError(Format("a component named %s already exists", {name}));
}

// --- Streaming --------------------------------------------------------------------------------

void TComponent::SetFlag(TComponentFlag flag, bool on) {
    if (on)
        FComponentState.Include(flag);
    else
        FComponentState.Exclude(flag);
}

void TComponent::SetInline(bool value) {
    SetFlag(csInline, value);
}

void TComponent::SetDesigning(bool value) {
    SetFlag(csDesigning, value);
}

void TComponent::GetChildren(const TGetChildProc& proc, const TComponent* root) const {
    if (root != this) return;
    for (TComponent* component : FComponents)
        if (!component->GetParentComponent()) proc(*component);
}

void TComponent::SetChildOrder(TComponent& child, int order) {
    if (child.FOwner != this) return;
    const auto from = std::find(FComponents.begin(), FComponents.end(), &child);
    FComponents.erase(from);
    auto to = FComponents.begin();
    for (; to != FComponents.end(); ++to)
        if (!(*to)->GetParentComponent() && order-- <= 0) break;
    FComponents.insert(to, &child);
}

void TComponent::ReadState(TReader& reader) {
    reader.ReadData(*this);
}

void TComponent::WriteState(TWriter& writer) {
    writer.WriteData(*this);
}

} // namespace tarn
