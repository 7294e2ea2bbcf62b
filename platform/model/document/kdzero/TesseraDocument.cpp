#include "document/kdzero/TesseraDocument.hpp"

#include "kd/zero/ElementMaker.hpp"

namespace document::kdzero {

TesseraDocument::TesseraDocument()
    : model(kd::zero::Model::create()),
      root(kd::zero::ElementMaker::make<DocumentRoot>(model.storage())) {}

}  // namespace document::kdzero
