// MIT License. Makes the effect's window.
#pragma once

class KesrelVocoder4TarvixEffect;

// Makes an editor and sets it on `effect`, which owns it from then on. The window is closed at first. Throws
// std::bad_alloc, with no effect.
void create_editor(KesrelVocoder4TarvixEffect* effect);
