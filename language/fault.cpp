#include "language/fault.h"

#include <algorithm>
#include <new>

namespace language {

using foundation::core::except::AnyException;
using foundation::core::except::Exception;
using foundation::core::except::MessageId;

void raiseFault(char const* key, std::string message, std::string hint, int faultyArgument) {
  Fault fault(key, std::move(hint));
  fault.setFaultyArgument(faultyArgument);
  throw Exception<Fault>(std::move(fault), std::move(message));
}

void raiseUserError(std::string identifier, std::string message) {
  // Both are handed on as C texts, which a NUL would end.
  std::ranges::replace(identifier, '\0', '?');
  std::ranges::replace(message, '\0', '?');
  std::size_t const colon = identifier.rfind(':');
  bool const hasPath = colon != std::string::npos;
  throw Exception<MessageId>(MessageId(hasPath ? identifier.substr(0, colon) : "",
                                       hasPath ? identifier.substr(colon + 1) : identifier),
                             std::move(message));
}

std::string SourceError::hint() const {
  auto const* fault = dynamic_cast<Fault const*>(&cause_->GetBaseMsgIDObj());
  return fault ? fault->hint() : std::string();
}

namespace {

std::shared_ptr<AnyException const> makeFault(char const* key, std::string message,
                                              std::string hint) {
  return std::make_shared<Exception<Fault>>(Fault(key, std::move(hint)), std::move(message));
}

}  // namespace

void raiseFaultAt(SourceSpan spot, char const* key, std::string message, std::string hint) {
  throw SourceError(spot, spot, makeFault(key, std::move(message), std::move(hint)));
}

void raiseSyntax(SourceSpan spot, std::string message, std::string hint, bool incomplete) {
  SourceError error(spot, spot, makeFault("syntax", std::move(message), std::move(hint)));
  if (incomplete) error.setIncomplete();
  throw error;
}

void rethrowLocated(SourceSpan whole, std::vector<SourceSpan> const& arguments) {
  try {
    throw;
  } catch (SourceError const&) {
    throw;
  } catch (AnyException const& error) {
    int const faulty = error.GetBaseMsgIDObj().faultyArgument();
    bool const known = faulty >= 1 && static_cast<std::size_t>(faulty) <= arguments.size();
    throw SourceError(whole, known ? arguments[static_cast<std::size_t>(faulty) - 1] : whole,
                      std::shared_ptr<AnyException const>(error.clone()));
  } catch (std::bad_alloc const&) {
    throw SourceError(whole, whole, makeFault("memory", "Out of memory.", ""));
  } catch (std::exception const& error) {
    throw SourceError(whole, whole, makeFault("internal", error.what(), ""));
  }
}

}  // namespace language
