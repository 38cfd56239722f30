#include "qsDialogs.h"

#include "vcl/Forms.h"

namespace tarn {
namespace {

struct TDialogState {
    HWND Owner = 0;
    std::string Caption;
};

TDialogState& State() {
    static TDialogState state;
    return state;
}

constexpr std::uint32_t ErrorBox = MB_ICONERROR | MB_OK;
constexpr std::uint32_t InfoBox = MB_ICONINFORMATION | MB_OK;
constexpr std::uint32_t WarningBox = MB_ICONWARNING | MB_OK;
constexpr std::uint32_t QueryBox = MB_ICONQUESTION | MB_YESNO;
constexpr std::uint32_t QueryBoxEx = MB_ICONQUESTION | MB_YESNOCANCEL;
constexpr std::uint32_t WarningQueryBox = MB_ICONWARNING | MB_YESNO;

TDialogAnswer Box(std::string_view text, std::uint32_t flags) {
    return OS().MessageBox(OwnerWnd(), text, DialogCaption(), flags);
}

} // namespace

HWND OwnerWnd() {
    if (State().Owner != 0 || !Application()) return State().Owner;
    return Application()->Handle();
}

void SetOwnerWnd(HWND window) {
    State().Owner = window;
}

const std::string& DialogCaption() {
    return State().Caption;
}

void SetDialogCaption(std::string_view caption) {
    State().Caption = caption;
}

void ShowError(std::string_view text) {
    Box(text, ErrorBox);
}

void ShowError(std::string_view format, std::initializer_list<TVarRec> args) {
    ShowError(Format(format, args));
}

void ShowInfo(std::string_view text) {
    Box(text, InfoBox);
}

void ShowInfo(std::string_view format, std::initializer_list<TVarRec> args) {
    ShowInfo(Format(format, args));
}

void ShowWarning(std::string_view text) {
    Box(text, WarningBox);
}

void ShowWarning(std::string_view format, std::initializer_list<TVarRec> args) {
    ShowWarning(Format(format, args));
}

bool QueryDialog(std::string_view text) {
    return Box(text, QueryBox) == IDYES;
}

bool QueryDialog(std::string_view format, std::initializer_list<TVarRec> args) {
    return QueryDialog(Format(format, args));
}

TDialogAnswer QueryDialogEx(std::string_view text) {
    return Box(text, QueryBoxEx);
}

TDialogAnswer QueryDialogEx(std::string_view format, std::initializer_list<TVarRec> args) {
    return QueryDialogEx(Format(format, args));
}

bool WarningDialog(std::string_view text) {
    return Box(text, WarningQueryBox) == IDYES;
}

bool WarningDialog(std::string_view format, std::initializer_list<TVarRec> args) {
    return WarningDialog(Format(format, args));
}

TDialogAnswer WarningDialogEx(std::string_view text) {
    return Box(text, QueryBoxEx);
}

TDialogAnswer WarningDialogEx(std::string_view format, std::initializer_list<TVarRec> args) {
    return WarningDialogEx(Format(format, args));
}

} // namespace tarn
