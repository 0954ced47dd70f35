// MIT License. Tests of the notification center.
#include "support/notification_center.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

namespace {

using halvern::notification;
using halvern::notification_center;
using halvern::notification_reference;
using testing::ElementsAre;

std::vector<std::string> calls;

class named_observer : public halvern::observer {
 public:
  explicit named_observer(std::string name) : name_(std::move(name)) {}
  void notify(const notification_reference& posted) override { calls.push_back(name_ + ":" + posted->name()); }

 private:
  std::string name_;
};

class Center : public testing::Test {
 protected:
  Center() { calls.clear(); }
  void post(const std::string& name, const void* from = nullptr) {
    center.post(notification_reference(new notification(name, from)));
  }

  notification_center center;
  named_observer first{"first"}, second{"second"};
  int sender = 0, stranger = 0;
};

TEST_F(Center, CallsObserversOfPairsThenNamesThenSendersThenEverything) {
  center.subscribe(&first, "", nullptr);
  center.subscribe(&first, "", &sender);
  center.subscribe(&first, "news", nullptr);
  center.subscribe(&second, "news", nullptr);
  center.subscribe(&second, "news", &sender);
  post("news", &sender);
  EXPECT_THAT(calls, ElementsAre("second:news", "first:news", "second:news", "first:news", "first:news"));
  calls.clear();
  post("news", &stranger);
  post("other", &sender);
  EXPECT_THAT(calls, ElementsAre("first:news", "second:news", "first:news", "first:other", "first:other"));
}

TEST_F(Center, RemovesOneSubscriptionOrAll) {
  for (int time = 0; time < 2; ++time) center.subscribe(&first, "news", nullptr);
  center.subscribe(&first, "news", &sender);
  center.subscribe(&first, "", nullptr);
  center.subscribe(&second, "", &sender);
  center.unsubscribe(&first, "news", nullptr);
  center.unsubscribe(&first, "never asked", nullptr);
  post("news", &sender);
  center.unsubscribe(&first);
  post("last", &sender);
  center.unsubscribe(&second);
  post("unheard", &sender);
  EXPECT_THAT(calls, ElementsAre("first:news", "first:news", "second:news", "first:news", "second:last"));
}

TEST(CenterThreads, MayPostWhileOthersSubscribe) {
  struct counting : halvern::observer {
    void notify(const notification_reference&) override { ++count; }
    std::atomic<int> count{0};
  } always, sometimes;
  notification_center center;
  center.subscribe(&always, "tick", nullptr);
  const auto post = [&] {
    for (int round = 0; round < 500; ++round) center.post(notification_reference(new notification("tick")));
  };
  std::thread one(post), two(post);
  for (int round = 0; round < 200; ++round) {
    center.subscribe(&sometimes, "tick", nullptr);
    center.unsubscribe(&sometimes);
  }
  one.join();
  two.join();
  EXPECT_EQ(always.count, 1000);
}

}  // namespace
