// The uninstaller stands in the folder that it has to remove, and a running file can't be deleted. So a removal runs in
// two processes: LumUnInst.exe starts a copy of itself from the temporary folder, and the copy does the work.
#pragma once

// First stage: copies the running file into the temporary folder and starts the copy in place of this process. Returns
// only if that failed; nothing is reported then, and the product stays as it was.
void RelaunchFromTemp();

// Second stage: removes the product whose uninstaller, given by its full path, was started, and ends the process with
// exit code 0.
[[noreturn]] void FinishUninstall(const wchar_t* pszUninstaller);
