# Installation and the CMake package ZRCore.
