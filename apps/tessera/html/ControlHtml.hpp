#pragma once

#include "tessera/html/HtmlText.hpp"
#include "tessera/pieces/PieceNode.hpp"

namespace tessera::html {

/// Draws a control as its data says: a list of options is a choice, a truth value a check box,
/// numbers between a minimum and a maximum a slider, and everything else a field. Nobody can
/// operate it. Returns whether the drawing shows all of the data.
bool drawControl(HtmlText& html, const pieces::PieceNode::Impl& control);

}  // namespace tessera::html
