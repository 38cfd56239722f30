#pragma once

#include "rtl/TObject.h"

namespace tarn {

/// The base of the Open Tools API's views of the IDE's objects. An adapter does not keep its object
/// alive; once that is gone it answers empty, 0 and false.
template <class TModel, class I> class TOtaAdapter : public TInterfacedObject<I> {
public:
    explicit TOtaAdapter(TModel& model) : FModel(&model) {}

protected:
    /// The answer of `ask(model)`, or an empty one.
    template <class F> auto Ask(F&& ask) const -> decltype(ask(std::declval<TModel&>())) {
        using TAnswer = decltype(ask(*FModel));
        if constexpr (std::is_void_v<TAnswer>) {
            if (FModel) ask(*FModel);
        } else {
            return FModel ? ask(*FModel) : TAnswer{};
        }
    }

private:
    TWeak<TModel> FModel;
};

/// The part of an adapter that all editors of a file share.
template <class TModel, class I> class TOtaFileEditor : public TOtaAdapter<TModel, I> {
public:
    using TOtaAdapter<TModel, I>::TOtaAdapter;

    std::string GetFileName() override {
        return this->Ask([](TModel& editor) { return std::string(editor.FileName()); });
    }
    TIntf<IOTAModule> GetModule() override {
        return this->Ask([](TModel& editor) { return editor.Module().Interface(); });
    }
    bool GetModified() override {
        return this->Ask([](TModel& editor) { return editor.Modified(); });
    }
    void Show() override {
        this->Ask([](TModel& editor) { editor.Show(); });
    }
};

} // namespace tarn
