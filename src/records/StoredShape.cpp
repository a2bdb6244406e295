#include "records/StoredShape.h"

#include <algorithm>
#include <iterator>

#include "message/FieldBytes.h"
#include "message/TagMessageReader.h"
#include "records/FieldIndex.h"

namespace Dravel {

namespace {

// Returns the bytes of the field's value; more than `rest` when it is cut off.
std::size_t Note(StoredShape& shape, tag::Tag tag, std::span<const std::uint8_t> rest) {
    std::size_t width = TagWidth(tag);
    const std::size_t index = kFieldIndex.Find(tag);
    if (width == kVariableWidth) {
        if (rest.size() < 2) return rest.size() + 1;
        const std::size_t length = wire::Get<std::uint16_t>(rest.data());
        shape.fits = shape.fits && (index == kNoField || length <= kTradeFields[index].capacity);
        width = 2 + length;
    }
    shape.identity |= index != kNoField && index >= kHostFields;
    if (tag == tag::DeletedMark && !rest.empty()) {
        shape.mark = true;
        shape.markSet = rest[0] != 0;
    }
    return width;
}

}  // namespace

damage::Kinds StoredShape::Damage(const TradeRecord& record, bool deleted) const {
    damage::Kinds kinds = 0;
    if (!whole || (identity && !fits)) kinds |= damage::Torn;
    if (identity && !HasIdentifier(record)) kinds |= damage::NoIdentifier;
    if (identity && whole && !mark) kinds |= damage::NoDeletedMark;
    if (markSet) kinds |= deleted ? damage::MarkedDeleted : damage::Torn;
    return kinds;
}

StoredShape ShapeOf(std::span<const std::uint8_t> fields) {
    StoredShape shape;
    while (!fields.empty() && shape.whole) {
        shape.whole = fields.size() >= wire::kTagSize && fields[0] == wire::kMark;
        if (!shape.whole) break;
        const auto tag = wire::Get<tag::Tag>(fields.data() + 1);
        fields = fields.subspan(wire::kTagSize);
        const std::size_t width = Note(shape, tag, fields);
        shape.whole = width <= fields.size();
        fields = fields.subspan(std::min(width, fields.size()));
    }
    return shape;
}

bool BeginsStoredField(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < wire::kTagSize || bytes[0] != wire::kMark) return false;
    const auto tag = wire::Get<tag::Tag>(bytes.data() + 1);
    return tag == tag::DeletedMark || kFieldIndex.Find(tag) != kNoField;
}

bool HoldsIdentity(std::span<const std::uint8_t> bytes) {
    std::uint8_t field[wire::kTagSize];
    wire::PutTag(field, tag::VELTTradeID);
    return std::search(bytes.begin(), bytes.end(), std::begin(field), std::end(field)) != bytes.end();
}

}  // namespace Dravel
