#pragma once

#include "qsExpShrData.h"
#include "vcl/TMenuItem.h"

namespace tarn {

/// Gives the settings of the menu command of that identifier, making them when they are new. The
/// shared menu settings own them.
using TGetItemData = TMethod<TExpMenuItemData*(std::string_view itemID)>;

/// What the manager asks of an expert.
class ICustomExpert : public IInterface {
public:
    static constexpr TGUID IID{"{D4455D5C-0638-401F-9A4D-42DFB2F5252A}"};

    /// The expert asks for the settings of each of its commands and sets their handlers and
    /// defaults. What is stored comes later and wins.
    virtual void Init(TGetItemData getItemData) = 0;
    /// The settings file has been read.
    /// \param loaded true when it existed, was not empty and could be read
    virtual void Load(bool loaded) = 0;
    /// A menu item was made from the settings; the expert may keep a reference while it lives.
    virtual void MenuNotification(TMenuItem* menuItem, TExpMenuItemData* itemData) = 0;

protected:
    ~ICustomExpert() = default;
};

/// The base of all experts. Experts are made by their constructor without arguments and freed by
/// the manager alone; work at an expert's end that may fail belongs into BeforeDestruction.
class TCustomExpert : public TUncounted<TPersistent, ICustomExpert> {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    void Init(TGetItemData getItemData) override;
    void Load(bool loaded) override;
    void MenuNotification(TMenuItem* menuItem, TExpMenuItemData* itemData) override;
};

/// Enables a command by what its update was called for: a menu item or an action.
void EnableCommand(TObject* sender, bool enabled);

/// The class reference of an expert.
using TExpertClass = TClassRef<TCustomExpert>;

} // namespace tarn
