// What the fields of a stored frame tell of damage, beside what is read of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "message/Tags.h"
#include "records/FrameDamage.h"
#include "records/TradeRecord.h"

namespace Dravel {

// A stored frame walked by the lengths that its fields declare, nothing hunted for.
struct StoredShape {
    bool whole = true;  // one field behind the other up to the end
    bool fits = true;   // no text is longer than a record holds
    bool identity = false, mark = false, markSet = false;

    // `record` and `deleted`: as the frame was read. What another writer's frame lacks is no damage: it has
    // no identity.
    damage::Kinds Damage(const TradeRecord& record, bool deleted) const;
};

// `fields`: those behind the message code.
StoredShape ShapeOf(std::span<const std::uint8_t> fields);

// Whether a field of a stored trade begins here: then these bytes belong to a frame whose length is too
// small.
bool BeginsStoredField(std::span<const std::uint8_t> bytes);
// Whether a frame that was written here lies among the bytes: the field of an identifier is there.
bool HoldsIdentity(std::span<const std::uint8_t> bytes);

}  // namespace Dravel
