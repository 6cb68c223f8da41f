// Rectangles copied between images of one depth (8, 16, 24 or 32 bits), and duplicated into new
// ones. The colour table (8 bits) or the masks (16 and 32 bits) go along. Rows start after 40
// bytes of header. An image may be copied onto itself: rows go one after the other, bottom first.
#pragma once

#include "image/dib.hpp"

namespace kirvo {

// Fills a destination made of exactly the rectangle's size: its own width and height are not
// looked at, only that its block can hold the rows. A rectangle of the source's width and height
// is the whole source, whatever its corner. Rows carry the bytes that follow the rectangle in the
// source into their padding.
// Answers -3, -1 (signs), -40 (depths), -1 (extent, blocks too small), in this order.
Status copy_out(HGLOBAL to, const LockedDib& from, const Rect& rect);

// Copies the rectangle to the column x and picture row y of the destination. A rectangle of the
// width and height of both images is the whole of both, padding included, whatever the corners.
// Answers as copy_out.
Status copy_rect(const LockedDib& to, int32_t x, int32_t y, const LockedDib& from,
                 const Rect& rect);

// A new image with the rectangle of the source.
// Answers -3, -1 (rectangle, block too small), -40 (below 8 bits), -2, in this order.
Status duplicate(const LockedDib& from, const Rect& rect, OwnedBlock& result);
// The same before anything is copied to it.
Status room_for_duplicate(const LockedDib& from, const Rect& rect, OwnedBlock& result);

} // namespace kirvo
