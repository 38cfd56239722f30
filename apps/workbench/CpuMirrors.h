#pragma once

// The mirrors of the panes of the CPU window.

#include "Mirrors.h"
#include "Windows/TCpuWindow.h"

#include <cstdint>
#include <vector>

namespace tarn {

/// The registers, or the flags, a line each.
class TCpuValuesMirror : public TMirrorOf<TCpuPane, QLabel> {
public:
    TCpuValuesMirror(TFrontEnd& frontEnd, TCpuPane& pane);

protected:
    void SyncState() override;
};

/// A pane of addresses: the selected row is kept in sight, and keys and the mouse select another.
class TAddressMirror : public TMirrorOf<TAddressPane, QWidget> {
public:
    TAddressMirror(TFrontEnd& frontEnd, TAddressPane& pane);

protected:
    void SyncState() override;
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    /// A row that is seen.
    struct TRow {
        std::uint32_t Address;
        QRect Place;
        QStringList Lines;
    };
    std::vector<TRow> Rows() const;
    void Paint();
    bool Key(int key);
    void Scroll(int rows);
    void Select(std::uint32_t address);

    std::uint32_t FTop = 0; ///< the first row that is seen
};

} // namespace tarn
