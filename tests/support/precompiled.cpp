// Only here to have the precompiled headers of the tests compiled once, with this file.
