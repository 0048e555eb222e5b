#include "platform/meta_types.hpp"

// The destructors stand here so that each class's run-time type information has one home.
namespace tarn::meta {

NamedElementImpl::~NamedElementImpl() = default;
PackageImpl::~PackageImpl() = default;
TypeImpl::~TypeImpl() = default;
ClassImpl::~ClassImpl() = default;
PrimitiveTypeImpl::~PrimitiveTypeImpl() = default;

}  // namespace tarn::meta
