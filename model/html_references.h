// Finding what an HTML text refers to: a function of the text alone.
#pragma once

#include "automation/wide_string.h"

namespace quorvane {

// Walks over the values that follow "src=", in whatever case and wherever it stands: in any
// element, at the end of a longer attribute name, in plain text. A value is opened by a quote of
// either kind, with or without white space in front of it, and ends at the next double quote, or
// at the next single quote when no double quote is left in the text. Reads the text once; views
// of it are valid as long as the text is.
class HtmlReferences {
public:
    explicit HtmlReferences(WideView html) : html_(html) {}

    // Goes to the next reference. False at the end of the text, and at a value that isn't quoted.
    bool Next();

    bool malformed() const { return malformed_; }
    // What lies between the reference before and this one, its opening quote included.
    WideView before() const { return html_.substr(previousEnd_, begin_ - previousEnd_); }
    // The reference, without its quotes.
    WideView value() const { return html_.substr(begin_, end_ - begin_); }
    // Everything behind the reference, from its closing quote on.
    WideView rest() const { return html_.substr(end_); }

private:
    bool FindAttribute(std::size_t& behind) const;
    std::size_t FindClosingQuote(std::size_t from);

    WideView html_;
    std::size_t previousEnd_ = 0;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;  // position of the closing quote
    bool doubleQuotesLeft_ = true;
    bool malformed_ = false;
};

}  // namespace quorvane
