#pragma once

#include "ExpDataFile.h"
#include "qsExpShrData.h"
#include "rtl/TMemoryStream.h"

#include <memory>
#include <string>
#include <string_view>

namespace tarn {

/// The settings of a pack of two experts, one of which has its own, without a manager.
struct TSmallSettings {
    TSmallSettings() {
        for (const std::string_view name : {"FirstExpert", "SecondExpert"})
            static_cast<TExpertInfo*>(Data.ActiveExperts.Add(name))->ExpertNodeName = "shown";
        for (const std::string_view name : {"SortItem", "AboutItem"}) {
            auto* const item = static_cast<TExpMenuItemData*>(Data.MenuData.Add(name));
            item->Caption = item->DefaultCaption = "usual";
        }
        Data.CustomData.Add(&Manager, "ManagerData");
        Data.CustomData.Add(&Form, "FormData");
    }

    static std::string Saved(TExpData& data, std::uint8_t format = 1) {
        TObjectSaver saver;
        saver.Format = format;
        TPersistent* const object = &data;
        TMemoryStream stream;
        saver.SaveObjects({&object, 1}, stream,
                          TStringList{MakeVerInfo(format == 1 ? osfBin : osfText)}, "ExpertData");
        return std::string(stream.Text());
    }
    std::string Saved(std::uint8_t format = 1) { return Saved(Data, format); }

    /// All or nothing, with the check of the version.
    static bool Load(TExpData& data, std::string_view bytes) {
        TObjectSaver saver;
        saver.DetectFormat = true;
        saver.OnCheckDescription = [](std::string_view description, bool text, bool& cancel) {
            CheckVer(description, text, cancel, {});
        };
        TPersistent* const object = &data;
        TBytesStream stream(bytes);
        return saver.SafeLoadObjects({&object, 1}, stream);
    }
    bool Load(std::string_view bytes) { return Load(Data, bytes); }

    TExpManagerData Manager;
    TFormSetting Form;
    TExpData Data;
};

} // namespace tarn
