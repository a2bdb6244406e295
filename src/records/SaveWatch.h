// Who wants to hear of a save while it is carried out.
#pragma once

#include "records/Checksum.h"

namespace Dravel {

// Called on the thread that carries the save out, under the book file's lock: must not call the file.
class ISaveWatch {
 public:
    virtual ~ISaveWatch() = default;
    // Between two system calls of a save: pieces written, blocks of a backup copied, rename tries.
    virtual void Between() noexcept {}
    // The new file is whole and on the disk under another name; the next step puts it in the book's place.
    virtual void BeforeSwap(const FileSum& newBook) noexcept { (void)newBook; }
    // After BeforeSwap, always: whether the new file is in the book's place now.
    virtual void AfterSwap(bool swapped) noexcept { (void)swapped; }
};

}  // namespace Dravel
