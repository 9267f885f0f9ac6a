// Texts of a drawing at a height that can be read on paper.
#pragma once

#include "cad/view/picture.h"

namespace cad::view {

// Makes texts that would be lower than `least` drawing units so high. Texts beside a symbol grow
// about it, and which of them find room is for the page to say. Others grow where they stand; one
// that would then lie on another text is left out, with those that follow it in its entity. Texts
// that are high enough stay as they are. Returns how many are left out.
int raiseTexts(Picture& picture, double least);

}  // namespace cad::view
