#pragma once

#include <functional>
#include <memory>
#include <string_view>

namespace tarn {

class TComponent;
class TPersistent;
class TReader;
class TStream;

/// What inputs ask of the storage that reads them.
struct TInputEvents {
    std::function<std::unique_ptr<TReader>(TStream& stream)> MakeReader;
    /// False when the load is cancelled.
    std::function<bool(const TPersistent* object, std::string_view description)> TellDescription;
};

/// Stored objects, read one after the other. The stream stands behind the last one when the input
/// is gone.
class TObjectInput {
public:
    TObjectInput() = default;
    TObjectInput(const TObjectInput&) = delete;
    TObjectInput& operator=(const TObjectInput&) = delete;
    virtual ~TObjectInput() = default;

    /// Reads the next object into this one; false when that is cancelled.
    virtual bool Read(TPersistent& object) = 0;
    /// Goes behind the object at which the last Read has failed; false when nobody can tell where
    /// it ends.
    virtual bool PassFailed() = 0;
};

/// Objects that are stored as root components.
class TRootInput : public TObjectInput {
public:
    /// Reads into the root, or into the wrapper of an object that is none.
    bool Read(TPersistent& object) override;
    /// Reads the next root; a null one is made and the caller's.
    virtual TComponent* ReadRoot(TComponent* root) = 0;
};

std::unique_ptr<TRootInput> BinaryInput(TStream& stream, const TInputEvents& events);
std::unique_ptr<TRootInput> ResourceInput(TStream& stream, const TInputEvents& events);
std::unique_ptr<TRootInput> TextInput(TStream& stream, const TInputEvents& events);
/// Objects without heads behind one signature, which is read at once: raises EInvalidImage.
std::unique_ptr<TObjectInput> PropertyInput(TStream& stream, const TInputEvents& events,
                                            std::string_view signature);

} // namespace tarn
