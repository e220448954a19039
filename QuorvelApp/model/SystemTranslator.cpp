#include "QuorvelApp/model/SystemTranslator.h"

#include "Presentation/SystemWords.h"

namespace quorvel {

// Returns a null string for texts that are not in the catalogue, and the next one is asked.
QString SystemTranslator::translate(const char* context, const char* text,
                                    const char* /*disambiguation*/, int /*count*/) const {
    return QString::fromUtf8(systemWords(context, text));
}

} // namespace quorvel
