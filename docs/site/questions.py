"""Questions as people type them: the search looks for what a question is about, and passes over the words that only make
it one."""

from __future__ import annotations

from sphinx.application import Sphinx
from sphinx.search.en import SearchEnglish

_WORDS_OF_QUESTIONS = frozenset("all am can did do does find from get have how i me my of what when which why you your".split())


class SearchForQuestions(SearchEnglish):
    """English, with more words that are not looked for."""

    stopwords = SearchEnglish.stopwords | _WORDS_OF_QUESTIONS


def setup(app: Sphinx) -> dict[str, bool]:
    app.add_search_language(SearchForQuestions)
    return {"parallel_read_safe": True}
