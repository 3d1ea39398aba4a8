// As many bytes as the library has, its own, without a meaning.
asm(".section .rodata\n.incbin \"" LIBRARY_IMAGE "\"\n.text");
