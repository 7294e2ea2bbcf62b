#include "document/kdzero/TesseraDocument.hpp"

#include "kd/zero/ElementMaker.hpp"

namespace document::kdzero {

TesseraDocument::TesseraDocument()
    : model(kd::zero::Model::create()),
      root(kd::zero::ElementMaker::make<DocumentRoot>(model.storage())) {
  model.storage().root = root.get();
}

TesseraDocument::~TesseraDocument() {
  model.storage().root = nullptr;
}

}  // namespace document::kdzero
