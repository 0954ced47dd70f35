// MIT License. Tests of the base of editors with a frame.
#include "vstgui/plugin-bindings/aeffguieditor.h"

#include "tests/vstgui/view_fixture.h"

namespace view_tests {
namespace {

std::vector<VstInt32> calls;  // opcode and index of each call of the host, in turn

VstIntPtr VSTCALLBACK host(AEffect* /*effect*/, VstInt32 opcode, VstInt32 index, VstIntPtr /*value*/, void* /*ptr*/,
                           float /*opt*/) {
  calls.insert(calls.end(), {opcode, index});
  return 1;
}

struct silent_effect : public AudioEffectX {
  silent_effect() : AudioEffectX(host, 1, 1) {}
  void processReplacing(float** /*inputs*/, float** /*outputs*/, VstInt32 /*sampleFrames*/) override {}
};

struct button_editor : public AEffGUIEditor {
  explicit button_editor(AudioEffect* owner) : AEffGUIEditor(owner) {}
  bool open(void* parent) override {
    AEffGUIEditor::open(parent);
    frame = new CFrame(CRect(0, 0, 100, 60), this);
    frame->open(parent);
    frame->addView(new CKickButton(CRect(0, 0, 20, 20), nullptr, 4, nullptr));
    return true;
  }
  void close() override {
    std::exchange(frame, nullptr)->close();
    AEffGUIEditor::close();
  }
};

TEST(GuiEditor, TellsTheHostOfEditsAndSizesAndHandsKeysToItsFrame) {
  desktop() = {};
  silent_effect effect;
  auto* const editor = new button_editor(&effect);
  EXPECT_EQ(effect.getEditor(), editor);
  VstKeyCode key{0, VKEY_RETURN, 0};
  EXPECT_FALSE(editor->onKeyDown(key));
  editor->pollEvents();

  int host_window = 0;
  editor->open(&host_window);
  auto window = platform::offscreen::windows().back();
  editor->pollEvents();
  EXPECT_TRUE(window.invalid_areas().empty());
  window.activate(true);
  calls.clear();
  EXPECT_TRUE(editor->onKeyDown(key));
  EXPECT_TRUE(editor->onKeyUp(key));
  EXPECT_TRUE(editor->getFrame()->setSize(200, 90));
  EXPECT_EQ(calls, (std::vector<VstInt32>{audioMasterBeginEdit, 4, audioMasterEndEdit, 4, audioMasterSizeWindow, 200}));
  EXPECT_EQ(window.size(), CPoint(200, 90));
  editor->close();
  EXPECT_FALSE(window.is_open());
}

}  // namespace
}  // namespace view_tests
