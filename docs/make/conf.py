"""Sphinx reads the pages of docs/ from the folder that make_site.py fills: the pages as they are, beside those made from the program."""

import os
import re
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[1]

project = "FilterProcessor"
version = release = re.search(r"project\(FilterProcessor VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text()).group(1)
html_title = "FilterProcessor: filters for depth images"
html_theme = "furo"
html_static_path = ["static"]
html_css_files = ["site.css"]
html_copy_source = html_show_sourcelink = html_show_copyright = False
html_last_updated_fmt = None
html_theme_options = {"top_of_page_button": None}

extensions = ["myst_parser", "breathe", "sphinx.ext.autodoc", "sphinx.ext.napoleon"]
myst_enable_extensions = ["colon_fence"]
myst_heading_anchors = 4
default_role = "code"
pygments_style = "default"

autodoc_member_order = "bysource"
autodoc_typehints = "signature"
napoleon_use_rtype = False
autodoc_type_aliases = {"Frame": "Frame", "Path": "Path", "Sequences": "Sequences", "Value": "Value", "npt.ArrayLike": "ArrayLike"}
python_use_unqualified_type_names = True

breathe_domain_by_extension = {"h": "c"}
breathe_default_members = ("members",)
c_id_attributes = ["ZVF_API", "FILTERPROCESSOR_API"]


def leave_the_site(app, env, node, contnode):
    """A page may point at texts of the project that are no pages of the site; such a reference is its words."""
    target = Path(os.path.normpath(Path(env.doc2path(node["refdoc"])).parent / node["reftarget"].split("#")[0]))
    return contnode if Path(env.srcdir) not in target.parents and target.is_file() else None


def setup(app):
    app.connect("missing-reference", leave_the_site)
