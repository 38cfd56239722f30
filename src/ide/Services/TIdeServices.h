#pragma once

#include "ota/ToolsAPI.h"

#include <vector>

namespace tarn {

class TIde;
class TIdeModule;

/// The IDE's service object. It may be held longer than the IDE lives and then offers nothing.
class TIdeServices
    : public TInterfacedObject<IOTAWizardServices, INTAServices, IOTAEditorServices,
                               IOTAModuleServices, IOTAActionServices, IOTAKeyboardServices> {
public:
    explicit TIdeServices(TIde& ide) : FIde(&ide) {}

    /// Hides a service, as an IDE that does not have it.
    void Withhold(const TGUID& iid) { FWithheld.push_back(iid); }
    void Detach() { FIde = nullptr; } ///< the IDE ends

    HResult QueryInterface(const TGUID& iid, void*& obj) override;

    int AddWizard(const TIntf<IOTAWizard>& wizard) override;
    void RemoveWizard(int index) override;

    TMainMenu* GetMainMenu() override;
    TActionList* GetActionList() override;
    TImageList* GetImageList() override;

    TIntf<IOTAEditBuffer> GetTopBuffer() override;
    TIntf<IOTAEditView> GetTopView() override;

    int GetModuleCount() override;
    TIntf<IOTAModule> GetModule(int index) override;
    TIntf<IOTAModule> CurrentModule() override;

    bool OpenFile(std::string_view fileName) override;
    bool SaveFile(std::string_view fileName) override;
    bool CloseFile(std::string_view fileName) override;

    int AddKeyboardBinding(const TIntf<IOTAKeyboardBinding>& binding) override;
    void RemoveKeyboardBinding(int index) override;

private:
    TIdeModule* FindModule(std::string_view fileName) const;

    TIde* FIde;
    std::vector<TGUID> FWithheld;
};

} // namespace tarn
