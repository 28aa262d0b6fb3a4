// Test entry point: every test starts with fresh test doubles and no armed
// allocation failure.
#include <gtest/gtest.h>

#include "support/alloc_failure.h"
#include "support/scripted_closed_libs.h"

namespace {

class FreshDoubles : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo&) override {
    alloc_failure::disarm();
    testing_support::resetScripted();
  }
  void OnTestEnd(const testing::TestInfo&) override { alloc_failure::disarm(); }
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  testing::UnitTest::GetInstance()->listeners().Append(new FreshDoubles);
  return RUN_ALL_TESTS();
}
