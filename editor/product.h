// MIT License. What the window says about the product.
#pragma once

// clang-format off
constexpr char product_version[]     = "4.0.a1";
constexpr char product_build[]       = "10";
constexpr char product_revision[]    = "7965600";
constexpr char product_word_size[]   = "64 bit";
constexpr char product_dsp_version[] = "0.0.1.10 (1607012300)";
constexpr char product_year[]        = "2016";
constexpr char product_authors[]     = "the Kesrel team";
constexpr char maker_name[]          = "Quorvant";
constexpr char maker_web_host[]      = "www.quorvant.example";
constexpr char product_page_path[]   = "/kvme";
// clang-format on
