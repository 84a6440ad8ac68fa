// Scope guards leave the drawing as the operation found it, however the
// operation ends, and let the operation's own error through.
#include "core/guards.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "core/general.h"
#include "host/host.h"
#include "memhost/document.h"
#include "support/project.h"

namespace kestrana::core {
namespace {

class Guards : public ::testing::Test {
 protected:
  void SetUp() override {
    a_ = &doc_->GetLayers().Add("A");
    b_ = &doc_->GetLayers().Add("B");
    a_->SetLock(true);
  }
  // Runs `body` in the guard's scope and ends it with an error.
  template <class Guard, class Body>
  void FailInside(Body body) {
    EXPECT_THROW(
        {
          Guard guard(*doc_);
          body();
          throw std::runtime_error("half way");
        },
        std::runtime_error);
  }

  std::unique_ptr<memhost::MemDocument> doc_ = test::NewProjectDocument();
  host::Layer* a_ = nullptr;
  host::Layer* b_ = nullptr;
};

TEST_F(Guards, LockedLayersAreLockedAgainAfterAnError) {
  FailInside<UnlockedLayers>([&] {
    EXPECT_FALSE(a_->Lock());
    b_->SetLock(true);  // the operation's own lock stays
  });
  EXPECT_TRUE(a_->Lock());
  EXPECT_TRUE(b_->Lock());
}

TEST_F(Guards, RestoreLocksEarlyAndOnce) {
  UnlockedLayers unlocked(*doc_);
  EXPECT_EQ(unlocked.Locked(), std::vector<std::string>{"A"});
  unlocked.Restore();
  EXPECT_TRUE(a_->Lock());
  a_->SetLock(false);
  unlocked.Restore();
  EXPECT_FALSE(a_->Lock());
}

TEST_F(Guards, ADeletedLayerIsForgottenOrFailsTheOperation) {
  b_->SetLock(true);
  {
    UnlockedLayers unlocked(*doc_);
    b_->Delete();
    unlocked.ForgetDeletedLayers();
  }
  EXPECT_TRUE(a_->Lock());
  // Unforgotten, the relock fails where nothing else has: the user hears
  // of it. While an error is on its way, that error is the one told.
  host::Layer& c = doc_->GetLayers().Add("C");
  c.SetLock(true);
  EXPECT_THROW(
      {
        UnlockedLayers unlocked(*doc_);
        c.Delete();
      },
      host::HostError);
  host::Layer& d = doc_->GetLayers().Add("D");
  d.SetLock(true);
  FailInside<UnlockedLayers>([&] { d.Delete(); });
}

TEST_F(Guards, EventsComeBackOnAfterAnError) {
  FailInside<EventsOff>([&] { EXPECT_EQ(General::CheckEventsFlag(*doc_), 0); });
  EXPECT_EQ(General::CheckEventsFlag(*doc_), 1);
  {
    EventsOff events_off(*doc_);
    events_off.Restore();
    EXPECT_EQ(General::CheckEventsFlag(*doc_), 1);
  }
}

TEST_F(Guards, TheActiveLayerAndTextStyleComeBack) {
  host::Layer& before = doc_->ActiveLayer();
  FailInside<SavedActiveLayer>([&] { doc_->SetActiveLayer(*b_); });
  EXPECT_EQ(&doc_->ActiveLayer(), &before);

  host::TextStyle& style = doc_->ActiveTextStyle();
  host::TextStyle& other = doc_->GetTextStyles().Add("Other");
  FailInside<SavedActiveTextStyle>([&] { doc_->SetActiveTextStyle(other); });
  EXPECT_EQ(&doc_->ActiveTextStyle(), &style);
}

}  // namespace
}  // namespace kestrana::core
