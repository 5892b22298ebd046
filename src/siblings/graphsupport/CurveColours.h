// The colours of curves as they are seen on a ground. All have blue in the high byte of three, red in the low one.
#pragma once

namespace zr::graph {

// Contrast ratio of two colours, 1 to 21 (W3C, Web Content Accessibility Guidelines 2.1).
double ContrastOf(unsigned long one, unsigned long other);

// Of a curve's line: as it was chosen on a light ground; on a dark one made lighter until it is seen, 2.6 to 1.
unsigned long LineColourOn(unsigned long ground, unsigned long colour);
// Of a text in a curve's colour: made darker, or lighter on a dark ground, until it can be read, 4.5 to 1.
unsigned long TextColourOn(unsigned long ground, unsigned long colour);

}  // namespace zr::graph
