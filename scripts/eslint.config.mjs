import { createRequire } from "node:module";

const js = createRequire(new URL("../Tests/Browser/package.json", import.meta.url))("@eslint/js");

const globals = (...names) => Object.fromEntries(names.map((name) => [name, "readonly"]));

// What names are known is TypeScript's to say in the page.
export default [
  js.configs.recommended,
  {
    rules: {
      "eqeqeq": "error",
      "no-var": "error",
      "prefer-const": "error",
      "no-unused-vars": ["error", { args: "after-used", argsIgnorePattern: "^_" }],
      "max-len": ["error", { code: 120 }],
      "no-restricted-syntax": ["error",
        { selector: "AssignmentExpression[left.property.name=/^(innerHTML|outerHTML)$/]",
          message: "Write texts, not markup." }],
    },
  },
  { files: ["Console/**"], rules: { "no-undef": "off" } },
  {
    files: ["Drills/**"],
    languageOptions: { globals: globals("process", "console", "Buffer", "setInterval", "clearInterval") },
  },
  {
    files: ["Tests/Browser/**", "Benchmarks/**", "scripts/**"],
    languageOptions: {
      globals: globals("process", "console", "Buffer", "URL", "setTimeout", "clearTimeout", "performance",
        "document", "window", "navigator", "location", "innerWidth", "innerHeight", "Event",
        "screenX", "screenY", "outerWidth", "outerHeight", "CanvasRenderingContext2D", "getComputedStyle",
        "addEventListener", "localStorage", "PointerEvent", "structuredClone", "WebSocket"),
    },
  },
];
