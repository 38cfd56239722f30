#pragma once

#include "cpuview/CpuCapture.h"
#include "qsExpShrForm.h"

namespace tarn {

class TCPUForm;

/// The capture of the panes of the IDE's CPU window as text.
class TCPUFormMng : public TSharedManager {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TCPUFormMng();
    ~TCPUFormMng() override;

    int ReadLineCount = 10;                 ///< lines of the panes that are read line by line
    TCPUViewType ViewObject = qsDisasmView; ///< the pane that is captured

    void Init(TGetItemData getItemData) override;
    void Load(bool loaded) override; ///< brings the settings into the window, when there is one

    /// Shows the capture window, which is made at the first time.
    void ShowCPU(TObject* sender);
    /// Enables a menu item or an action while there is a CPU window to be seen.
    void UpdateMenuState(TObject* sender);
    TCPUForm* Form() const; ///< null until it is shown

private:
    TWeak<TCPUForm> FForm; ///< owned
};

// Initialization and finalization of the unit, counted.
void InitializeCPUView();
void FinalizeCPUView();

} // namespace tarn
