# The npm package, installed from its file into a fresh folder, and the examples of its readme in Node.

npm_package() {
    mkdir "$scratch/node"
    cp tests/javascript/package.test.mjs "$scratch/node"
    cd "$scratch/node"
    npm init --yes
    npm install --offline --no-audit --no-fund "$release"/krlimage-npm-*.tgz
    node --test package.test.mjs
}

part "npm package" npm_package
