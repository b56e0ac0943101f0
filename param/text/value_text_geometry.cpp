// Points, sizes and rectangles: two or four numbers.
#include "param/text/value_text_fields.h"
#include "param/text/value_text_rows.h"

namespace qzr {

bool parse_size(std::string_view text, tagQZVARIANT& value) {
    tagSIZE size{};
    if (!FieldReader(text).list(size.cx, size.cy)) return false;
    value.vt = QZVT_SIZE;
    value.sizeVal = size;
    return true;
}

bool parse_real_size(std::string_view text, tagQZVARIANT& value) {
    tagRSIZE size{};
    if (!FieldReader(text).list(size.cx, size.cy)) return false;
    value.vt = QZVT_RSIZE;
    value.rsizeVal = size;
    return true;
}

bool parse_point(std::string_view text, tagQZVARIANT& value) {
    tagPOINT point{};
    if (!FieldReader(text).list(point.x, point.y)) return false;
    value.vt = QZVT_POINT;
    value.pointVal = point;
    return true;
}

bool parse_real_point(std::string_view text, tagQZVARIANT& value) {
    tagRPOINT point{};
    if (!FieldReader(text).list(point.x, point.y)) return false;
    value.vt = QZVT_RPOINT;
    value.rpointVal = point;
    return true;
}

bool parse_rect(std::string_view text, tagQZVARIANT& value) {
    tagRECT rect{};
    if (!FieldReader(text).list(rect.left, rect.top, rect.right, rect.bottom)) return false;
    value.vt = QZVT_RECT;
    value.rectVal = rect;
    return true;
}

bool parse_real_rect(std::string_view text, tagQZVARIANT& value) {
    tagRRECT rect{};
    if (!FieldReader(text).list(rect.left, rect.top, rect.right, rect.bottom)) return false;
    value.vt = QZVT_RRECT;
    value.rrectVal = rect;
    return true;
}

void format_size(const tagQZVARIANT& value, TextBuffer& out) {
    append_list(out, value.sizeVal.cx, value.sizeVal.cy);
}
void format_real_size(const tagQZVARIANT& value, TextBuffer& out) {
    append_list(out, value.rsizeVal.cx, value.rsizeVal.cy);
}
void format_point(const tagQZVARIANT& value, TextBuffer& out) {
    append_list(out, value.pointVal.x, value.pointVal.y);
}
void format_real_point(const tagQZVARIANT& value, TextBuffer& out) {
    append_list(out, value.rpointVal.x, value.rpointVal.y);
}
void format_rect(const tagQZVARIANT& value, TextBuffer& out) {
    const tagRECT& r = value.rectVal;
    append_list(out, r.left, r.top, r.right, r.bottom);
}
void format_real_rect(const tagQZVARIANT& value, TextBuffer& out) {
    const tagRRECT& r = value.rrectVal;
    append_list(out, r.left, r.top, r.right, r.bottom);
}

} // namespace qzr
