#pragma once

// A DXCore over the fault-injecting double, with the trace log captured.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <karvelui/DXCore.h>
#include "support/FakeDirect3D.h"
#include "support/TraceCapture.h"

namespace KarvelTest {

using namespace KarvelUI;

class FakeCoreTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(DXCore::InitInstance(fake::FakeDirect3D::Create(gpu).Get()), S_OK);
    core.SetWindow(reinterpret_cast<HWND>(0x1000));  // the double never looks at it
  }
  void TearDown() override { DXCore::ExitInstance(); }

  // "<level> <message>" per traced line.
  std::vector<std::wstring> Traced() const {
    std::vector<std::wstring> lines;
    for (const TracedLine& line : trace.Lines()) lines.push_back(std::to_wstring(line.level) + L" " + line.message);
    return lines;
  }
  // The calls of the double whose line starts with `prefix`.
  std::vector<std::string> CallsStartingWith(const std::string& prefix) const {
    std::vector<std::string> calls;
    for (const std::string& call : gpu->Calls())
      if (call.rfind(prefix, 0) == 0) calls.push_back(call);
    return calls;
  }
  // A device ready to paint, with the log emptied.
  void MakeReady() {
    ASSERT_EQ(core._InitD3D(), S_OK);
    gpu->ClearLog();
    trace.Clear();
  }

  std::shared_ptr<fake::FakeGpu> gpu = std::make_shared<fake::FakeGpu>();
  TraceCapture trace;
  DXCore core;
};

}  // namespace KarvelTest
