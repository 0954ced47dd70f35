// MIT License. The window's bitmaps as resources of the module.
#pragma once

// Makes the bitmaps known by their names. Calling it again changes nothing. Any thread.
void register_artwork();
