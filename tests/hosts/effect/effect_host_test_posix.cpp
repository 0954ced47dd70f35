// MIT License. Tests of signals while the effect starts.
#include <signal.h>

#include "tests/hosts/command.h"
#include "tests/words/environment.h"

TEST(EffectHostSignals, EndTheProgramWhileTheEffectStarts) {
  set_variable("KESREL_ODD", "ending");
  const arguments words{"--list-programs", "--plugin", KESREL_ODD_EFFECT};
  const auto ended = run(words);
  EXPECT_EQ(ended.status, -SIGTERM) << "not the effect's own handler";
  EXPECT_EQ(ended.out + ended.error, "");

  const auto former = signal(SIGTERM, SIG_IGN);
  EXPECT_EQ(run(words).status, 0) << "a signal that the parent ignores stays ignored";
  signal(SIGTERM, former);
}
