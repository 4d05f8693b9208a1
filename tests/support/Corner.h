// A clean corner of the machine for one test: an empty folder of its own, the program's globals at their start values,
// an empty boot list. All of it is taken away afterwards.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "tests/support/Files.h"
#include "tests/support/ProgramState.h"
#include "tests/support/RegistryCorner.h"

// An empty folder with a short path, removed with all in it at the end.
class CCorner
{
public:
    CCorner();
    ~CCorner();
    CCorner(const CCorner&) = delete;
    CCorner& operator=(const CCorner&) = delete;

    const std::wstring& Folder() const { return m_strFolder; } // no trailing backslash
    std::wstring At(const std::wstring& strRelative) const { return m_strFolder + L"\\" + strRelative; }

private:
    std::wstring m_strFolder;
};

// The fixture of most suites. A suite's own SetUp and TearDown call these.
class MachineCorner : public testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    const std::wstring& Folder() const { return m_corner.Folder(); }
    std::wstring At(const std::wstring& strRelative) const { return m_corner.At(strRelative); }

    CCorner m_corner;

private:
    std::wstring m_strStartFolder; // this process's, which the program changes
};

// A machine on which the product never was, and on which nothing stays of one that the test installed in its default
// place.
class ProductCorner : public MachineCorner
{
protected:
    void SetUp() override;
    void TearDown() override;

    const std::wstring m_strProduct = L"C:\\Program Files\\Lumacap 8"; // the default target

private:
    std::unique_ptr<CRegistryCorner> m_pRegistry;
};
