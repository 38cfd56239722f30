#include "Cpu/Emulator.h"

#include "Cpu/TDisassembler.h"

#include <unicorn/unicorn.h>

namespace tarn {
namespace {

constexpr std::uint32_t StackSize = 0x10000;
/// An address that is never executed: the end of the address space.
constexpr std::uint64_t Nowhere = std::uint64_t{1} << 32;

constexpr int UnicornRegisters[] = {
    UC_X86_REG_EAX, UC_X86_REG_EBX,    UC_X86_REG_ECX, UC_X86_REG_EDX,
    UC_X86_REG_ESI, UC_X86_REG_EDI,    UC_X86_REG_EBP, UC_X86_REG_ESP,
    UC_X86_REG_EIP, UC_X86_REG_EFLAGS, UC_X86_REG_CS,  UC_X86_REG_DS,
    UC_X86_REG_SS,  UC_X86_REG_ES,     UC_X86_REG_FS,  UC_X86_REG_GS,
};
static_assert(std::size(UnicornRegisters) == CpuRegisterCount);

/// A processor with the memory of a program, and what is seen of it while it runs.
class TProcessor {
public:
    explicit TProcessor(const TSparseMemory& memory);
    TProcessor(const TProcessor&) = delete;
    TProcessor& operator=(const TProcessor&) = delete;
    ~TProcessor() { uc_close(FEngine); }

    /// Runs from `entry` and gives the reason of the stop.
    std::string Run(std::uint32_t entry, const TRunOptions& options);
    TCpuRegisters Registers() const;
    void CopyMemory(TSparseMemory& memory) const;

    std::uint32_t Steps() const { return FSteps; }
    const std::set<std::uint32_t>& Executed() const { return FExecuted; }

private:
    static void Check(uc_err error) {
        if (error != UC_ERR_OK) throw ECpuError(Format("the emulator: %s", {uc_strerror(error)}));
    }
    void SetRegister(TCpuRegister reg, std::uint32_t value) {
        Check(uc_reg_write(FEngine, UnicornRegisters[reg], &value));
    }
    template <class F> void AddHook(int type, F* hook, int instruction = 0);
    void StopAt(std::string reason);
    std::string EndOf(uc_err error, const TRunOptions& options);

    static void OnCode(uc_engine*, std::uint64_t address, std::uint32_t size, void* self);
    static void OnInterrupt(uc_engine*, std::uint32_t number, void* self);
    static void OnSystemCall(uc_engine*, void* self);
    static bool OnMissing(uc_engine*, uc_mem_type type, std::uint64_t address, int size,
                          std::int64_t value, void* self);

    uc_engine* FEngine = nullptr;
    std::set<std::uint32_t> FExecuted;
    std::uint32_t FLast = 0; ///< the last instruction that was begun
    std::uint32_t FSteps = 0;
    std::string FReason; ///< of a stop in the middle of FLast
};

TProcessor::TProcessor(const TSparseMemory& memory) {
    Check(uc_open(UC_ARCH_X86, UC_MODE_32, &FEngine));
    try {
        const auto& pages = memory.Pages();
        for (auto first = pages.begin(); first != pages.end();) {
            auto last = first;
            std::uint64_t end = first->first;
            for (; last != pages.end() && last->first == end; ++last)
                end += TSparseMemory::PageSize;
            Check(uc_mem_map(FEngine, first->first, end - first->first, UC_PROT_ALL));
            first = last;
        }
        for (const auto& [start, page] : pages)
            Check(uc_mem_write(FEngine, start, page.Bytes.data(), page.Bytes.size()));
        AddHook(UC_HOOK_CODE, OnCode);
        AddHook(UC_HOOK_INTR, OnInterrupt);
        AddHook(UC_HOOK_INSN, OnSystemCall, UC_X86_INS_SYSCALL);
        AddHook(UC_HOOK_INSN, OnSystemCall, UC_X86_INS_SYSENTER);
        AddHook(UC_HOOK_MEM_UNMAPPED, OnMissing);
    } catch (...) {
        uc_close(FEngine);
        throw;
    }
}

template <class F> void TProcessor::AddHook(int type, F* hook, int instruction) {
    uc_hook handle = 0;
    // Begin above end means everywhere.
    Check(uc_hook_add(FEngine, &handle, type, reinterpret_cast<void*>(hook), this, std::uint64_t{1},
                      std::uint64_t{0}, instruction));
}

// --- While it runs ----------------------------------------------------------------------------

void TProcessor::OnCode(uc_engine*, std::uint64_t address, std::uint32_t, void* self) {
    auto& processor = *static_cast<TProcessor*>(self);
    processor.FLast = static_cast<std::uint32_t>(address);
    processor.FExecuted.insert(processor.FLast);
    ++processor.FSteps;
}

void TProcessor::StopAt(std::string reason) {
    FReason = std::move(reason);
    uc_emu_stop(FEngine);
}

void TProcessor::OnInterrupt(uc_engine*, std::uint32_t number, void* self) {
    auto& processor = *static_cast<TProcessor*>(self);
    // INT and INT3 ask for what is not there; anything else was raised by the processor.
    std::uint8_t first = 0;
    uc_mem_read(processor.FEngine, processor.FLast, &first, 1);
    const bool asked = first == 0xCD || first == 0xCC || first == 0xCE;
    const std::string name = HexText(number, 2) + "h";
    processor.StopAt(asked ? "interrupt " + name + ", and there is no system to serve it"
                           : "the processor's exception " + name);
}

void TProcessor::OnSystemCall(uc_engine*, void* self) {
    static_cast<TProcessor*>(self)->StopAt("a system call, and there is no system to serve it");
}

bool TProcessor::OnMissing(uc_engine*, uc_mem_type type, std::uint64_t address, int, std::int64_t,
                           void* self) {
    auto& processor = *static_cast<TProcessor*>(self);
    const std::string_view verb = type == UC_MEM_WRITE_UNMAPPED   ? "written"
                                  : type == UC_MEM_FETCH_UNMAPPED ? "executed"
                                                                  : "read";
    processor.FReason = Format("there is no memory at %s, to be %s",
                               {HexText(static_cast<std::uint32_t>(address)), verb});
    return false;
}

// --- From start to stop -----------------------------------------------------------------------

std::string TProcessor::Run(std::uint32_t entry, const TRunOptions& options) {
    SetRegister(rgESP, options.StackTop - 16);
    SetRegister(rgEIP, entry);
    if (options.Steps == 0 || options.Until == entry) return EndOf(UC_ERR_OK, options);
    const uc_err error = uc_emu_start(
        FEngine, entry, options.Until ? std::uint64_t{*options.Until} : Nowhere, 0, options.Steps);
    return EndOf(error, options);
}

std::string TProcessor::EndOf(uc_err error, const TRunOptions& options) {
    if (error == UC_ERR_FETCH_UNMAPPED) return FReason; // EIP is where it would go on
    if (error != UC_ERR_OK || !FReason.empty()) {
        // The instruction was begun and not done.
        SetRegister(rgEIP, FLast);
        --FSteps;
        return !FReason.empty() ? FReason : uc_strerror(error);
    }
    const std::uint32_t place = Registers()[rgEIP];
    if (options.Until == place) return "the address to stop at";
    if (FSteps >= options.Steps) return options.Until ? "the limit" : "as told";
    return "the processor was halted";
}

TCpuRegisters TProcessor::Registers() const {
    TCpuRegisters registers{};
    for (std::size_t i = 0; i < CpuRegisterCount; ++i)
        Check(uc_reg_read(FEngine, UnicornRegisters[i], &registers[i]));
    return registers;
}

void TProcessor::CopyMemory(TSparseMemory& memory) const {
    for (const auto& [start, page] : memory.Pages())
        Check(uc_mem_read(FEngine, start, memory.PageOf(start).Bytes.data(), page.Bytes.size()));
}

// --- The state --------------------------------------------------------------------------------

class TProgramState : public TMachineState {
public:
    TProgramState(TProgram program, const TRunOptions& options);
    std::optional<TInstruction> InstructionAt(std::uint32_t address) const override;

private:
    std::map<std::uint32_t, std::string> FLabels;
    std::optional<TDisassembler> FDisassembler;
};

/// Adds the stack of zeros.
void AddStack(TSparseMemory& memory, std::uint32_t top) {
    if (top % TSparseMemory::PageSize != 0 || top < StackSize)
        throw ECpuError(Format("no stack can end at %s", {HexText(top)}));
    for (std::uint32_t start = top - StackSize; start != top; start += TSparseMemory::PageSize) {
        TSparseMemory::TPage& page = memory.PageOf(start);
        if (page.Known.any())
            throw ECpuError(
                Format("the program lies where its stack is to be, below %s", {HexText(top)}));
        page.Known.set();
    }
}

TProgramState::TProgramState(TProgram program, const TRunOptions& options)
    : FLabels(std::move(program.Labels)) {
    FMemory = std::move(program.Memory);
    FDataAddress = program.DataAddress;
    if (!FMemory.ByteAt(program.Entry))
        throw ECpuError(Format("the entry %s is outside the program", {HexText(program.Entry)}));
    AddStack(FMemory, options.StackTop);

    TProcessor processor(FMemory);
    const std::string reason = processor.Run(program.Entry, options);
    FRegisters = processor.Registers();
    processor.CopyMemory(FMemory);
    FStopText = Format("at %s after %d instructions: %s",
                       {HexText(Register(rgEIP)), processor.Steps(), reason});

    std::set<std::uint32_t> known = processor.Executed();
    known.insert({program.Entry, Register(rgEIP)});
    for (const auto& [address, label] : FLabels) known.insert(address);
    std::erase_if(known, [&](std::uint32_t address) { return !FMemory.ByteAt(address); });
    FDisassembler.emplace(FMemory, std::move(known));
}

std::optional<TInstruction> TProgramState::InstructionAt(std::uint32_t address) const {
    auto instruction = FDisassembler->InstructionAt(address);
    if (!instruction) return std::nullopt;
    if (const auto label = FLabels.find(instruction->Address); label != FLabels.end())
        instruction->Label = label->second;
    return instruction;
}

} // namespace

bool HasEmulator() {
    return true;
}

std::shared_ptr<const TMachineState> RunProgram(TProgram program, const TRunOptions& options) {
    return std::make_shared<TProgramState>(std::move(program), options);
}

} // namespace tarn
