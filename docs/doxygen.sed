# Prepares a document for Doxygen, which knows no places within pages and no files but its own.
/^```/,/^```/b

# A link to a place in its own page is left out; one to a place in another page leads to that page.
s/\[([^]]*)\]\(#[a-z0-9-]+\)/\1/g
s/\.md#[a-z0-9-]+\)/.md)/g

# Pictures are found by their names; from build/docs/html the root of the tree is three folders up.
s#\((\.\./)*docs/([a-z-]+\.png)\)#(\2)#g
s#src="docs/#src="../../../docs/#g
s#\]\((\.\./)*((examples|hostkit|http|network|scripts|tests)(/[^)]*)?)\)#](../../../\2)#g
