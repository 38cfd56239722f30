#pragma once

#include "os/OS.h"
#include "rtl/SysUtils.h"

#include <string>
#include <string_view>

namespace tarn {

/// The window that owns the message boxes; 0 stands for the application's window.
HWND OwnerWnd();
void SetOwnerWnd(HWND window);
/// The caption of the message boxes.
const std::string& DialogCaption();
void SetDialogCaption(std::string_view caption);

// Modal message boxes. The second form formats the text with its arguments first.

void ShowError(std::string_view text);
void ShowError(std::string_view format, std::initializer_list<TVarRec> args);
void ShowInfo(std::string_view text);
void ShowInfo(std::string_view format, std::initializer_list<TVarRec> args);
void ShowWarning(std::string_view text);
void ShowWarning(std::string_view format, std::initializer_list<TVarRec> args);

/// Yes or No behind a question icon; true for Yes.
bool QueryDialog(std::string_view text);
bool QueryDialog(std::string_view format, std::initializer_list<TVarRec> args);
/// Yes, No or Cancel behind a question icon.
TDialogAnswer QueryDialogEx(std::string_view text);
TDialogAnswer QueryDialogEx(std::string_view format, std::initializer_list<TVarRec> args);
/// Yes or No behind a warning icon; true for Yes.
bool WarningDialog(std::string_view text);
bool WarningDialog(std::string_view format, std::initializer_list<TVarRec> args);
/// Yes, No or Cancel. A kept quirk: the icon is the question mark of QueryDialogEx.
TDialogAnswer WarningDialogEx(std::string_view text);
TDialogAnswer WarningDialogEx(std::string_view format, std::initializer_list<TVarRec> args);

} // namespace tarn
