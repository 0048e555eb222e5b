#pragma once

namespace tarn::evolution::catalogue {

/// One of the two selections of a question.
enum class QuestionSide { From, To };

}  // namespace tarn::evolution::catalogue
