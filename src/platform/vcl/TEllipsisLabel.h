#pragma once

#include "vcl/TLabel.h"

namespace tarn {

/// A label that ends a text for which it is too narrow with "...".
class TEllipsisLabel : public TLabel {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TEllipsisLabel(TComponent* owner = nullptr) : TLabel(owner) {}

    /// The caption as it fits into the width: of a line that does not, as many characters from its
    /// front as leave room for "..." behind them, and "..." alone where none do. Broken lines are
    /// joined by CR LF then; the caption itself when all of it fits.
    std::string ShownText() const;
};

} // namespace tarn
