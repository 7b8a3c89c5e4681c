// Headings come first among the results of a search: those that have every word looked for, and those whose every word is
// looked for, as that of a member in a question about it. Sphinx itself knows headings only when they are typed out.
"use strict";

(() => {
  const stemmer = new Stemmer();
  const stems = (text) =>
    new Set(
      splitQuery(text.toLowerCase())
        .filter((word) => !stopwords.includes(word) && !/^\d+$/.test(word))
        .map((word) => stemmer.stemWord(word))
    );
  const common = (some, others) => [...some].filter((word) => others.has(word)).length;

  const searchTexts = Search.performTermsSearch;
  Search.performTermsSearch = (terms, excluded) => {
    const { alltitles, docnames, filenames, titles } = Search._index;
    const results = searchTexts(terms, excluded);
    for (const [heading, places] of Object.entries(alltitles)) {
      const words = stems(heading);
      const matching = common(words, terms);
      // Of a long text, one word that happens to be a heading is none to speak of.
      if (3 * matching < terms.size || (matching < words.size && matching < terms.size)) continue;
      for (const [page, anchor] of places) {
        // More than for any word in a text; most under the title that is asked for as well.
        const isTitle = titles[page] === heading;
        const under = isTitle ? 0 : common(stems(titles[page]), terms);
        const score = 20 + (50 * matching) / terms.size + (10 * matching) / words.size + under;
        const title = isTitle ? heading : `${titles[page]} > ${heading}`;
        const place = isTitle || anchor === null ? "" : `#${anchor}`;
        results.push([docnames[page], title, place, null, score, filenames[page]]);
      }
    }
    return results;
  };
})();
