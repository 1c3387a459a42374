#pragma once
// A document stack and page images for tests: any number of pages, nulls and odd byte arrays where asked for.

#include <vector>

#include "host/DocumentStack.h"
#include "host/PageImage.h"
#include "support/FakeObject.h"

namespace test {

// Page counts of the documents; -1 gives a null document, and the page at `nullPage` of any document is null.
struct FakeStack {
    std::vector<int> documents;
    int nullPage = -1;
    VARTYPE byteType = VT_UI1;
    LONG byteCount = 3;
    HRESULT dataQuery = S_OK;  // what the data object answers when it is asked for IImageData
    HRESULT load = S_OK;       // what LoadFromMemory answers
    std::vector<LONG> loaded;  // lengths that LoadFromMemory got
};

// The stack has one reference for the caller; `stack` has to outlive it.
IQuire* MakeFakeQuire(FakeStack& stack);

// The page image class; images load into the FakeStack of the last MakeFakeQuire. GetSize gives 2100 x 2970.
class FakePageImageClass {
public:
    FakePageImageClass();

private:
    FakeClass m_images;
};

}  // namespace test
